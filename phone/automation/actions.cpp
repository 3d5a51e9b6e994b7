#include "phone/automation/actions.hpp"

#include "phone/automation/scripts/script_targets.hpp"

#include <algorithm>
#include <cmath>
#include <set>

namespace phone {

namespace {

constexpr std::size_t kMaxSources = 10;
constexpr double kMaxSeconds = 600;
constexpr double kMostMilliseconds = 9007199254740991;   // 2^53 - 1

class ActionReader {
public:
    Answer<std::vector<ActionSource>> read(Json const& parameters)
    {
        auto const at = parameters.find("actions");
        if (at == parameters.end() || !at->is_array())
            return invalidArgument("`actions` is an array");
        std::vector<ActionSource> sources;
        std::set<std::string> ids;
        for (Json const& each : *at) {
            ActionSource source;
            if (!readSource(each, source))
                return *m_error;
            if (!ids.insert(source.id).second)
                return invalidArgument("two sources have the id \"" + source.id + "\"");
            sources.push_back(std::move(source));
        }
        if (sources.size() > kMaxSources)
            return invalidArgument("there are more than 10 sources");
        if (!(totalSeconds(sources) <= kMaxSeconds))
            return invalidArgument("the actions take more than ten minutes");
        return sources;
    }

private:
    bool refuse(CommandError error)
    {
        m_error = std::move(error);
        return false;
    }
    bool refuse(std::string message) { return refuse(invalidArgument(std::move(message))); }

    static double totalSeconds(std::vector<ActionSource> const& sources)
    {
        std::size_t ticks = 0;
        for (auto const& source : sources)
            ticks = std::max(ticks, source.items.size());
        double total = 0;
        for (std::size_t tick = 0; tick < ticks; ++tick) {
            double longest = 0;
            for (auto const& source : sources)
                if (tick < source.items.size())
                    longest = std::max(longest, source.items[tick].seconds);
            total += longest;
        }
        return total;
    }

    bool readSource(Json const& json, ActionSource& source)
    {
        if (!json.is_object())
            return refuse("a source is an object");
        auto const id = json.find("id");
        if (id == json.end() || !id->is_string())
            return refuse("a source has an `id`, a text");
        source.id = *id;
        auto const type = json.find("type");
        std::string const kind = type != json.end() && type->is_string() ? type->get<std::string>() : "";
        if (kind != "pointer" && kind != "key" && kind != "wheel" && kind != "none")
            return refuse("a source's `type` is pointer, key, wheel or none");
        if (kind == "pointer" && !readParameters(json))
            return false;
        source.kind = kind == "pointer" ? ActionSource::Kind::pointer
            : kind == "key"             ? ActionSource::Kind::key
                                        : ActionSource::Kind::pause;
        auto const items = json.find("actions");
        if (items == json.end() || !items->is_array())
            return refuse("a source's `actions` is an array");
        for (Json const& each : *items) {
            ActionItem item;
            if (!readItem(each, kind, item))
                return false;
            source.items.push_back(std::move(item));
        }
        return true;
    }

    bool readParameters(Json const& source)
    {
        auto const parameters = source.find("parameters");
        if (parameters == source.end())
            return true;
        if (!parameters->is_object())
            return refuse("a source's `parameters` is an object");
        auto const type = parameters->find("pointerType");
        if (type == parameters->end() || *type == "mouse" || *type == "pen" || *type == "touch")
            return true;
        return refuse("`pointerType` is mouse, pen or touch; each is a finger here");
    }

    bool readItem(Json const& json, std::string const& sourceKind, ActionItem& item)
    {
        if (!json.is_object())
            return refuse("an action is an object");
        auto const type = json.find("type");
        if (type == json.end() || !type->is_string())
            return refuse("an action has a `type`, a text");
        std::string const kind = *type;
        if (kind == "pause")
            return readDuration(json, item);
        if (sourceKind == "wheel" && kind == "scroll")
            return refuse({ ErrorCode::unsupportedOperation, "a phone has no wheel; move a finger" });
        if (sourceKind == "key" && (kind == "keyDown" || kind == "keyUp")) {
            item.kind = kind == "keyDown" ? ActionItem::Kind::keyDown : ActionItem::Kind::keyUp;
            return readKey(json, item);
        }
        if (sourceKind == "pointer" && (kind == "pointerDown" || kind == "pointerUp")) {
            item.kind = kind == "pointerDown" ? ActionItem::Kind::pointerDown : ActionItem::Kind::pointerUp;
            auto const button = json.find("button");
            if (button != json.end() && !(button->is_number_integer() && button->get<double>() >= 0))
                return refuse("`button` is a whole number from 0");
            return true;
        }
        if (sourceKind == "pointer" && kind == "pointerCancel") {
            item.kind = ActionItem::Kind::pointerCancel;
            return true;
        }
        if (sourceKind == "pointer" && kind == "pointerMove") {
            item.kind = ActionItem::Kind::pointerMove;
            return readDuration(json, item) && readPlace(json, item);
        }
        return refuse("a source of type " + sourceKind + " has no action \"" + kind + "\"");
    }

    bool readDuration(Json const& json, ActionItem& item)
    {
        auto const duration = json.find("duration");
        if (duration == json.end())
            return true;
        double const value = duration->is_number() ? duration->get<double>() : -1;
        if (!(value >= 0 && value <= kMostMilliseconds && value == std::floor(value)))
            return refuse("`duration` is a whole number of milliseconds from 0");
        item.seconds = value / 1000;
        return true;
    }

    bool readKey(Json const& json, ActionItem& item)
    {
        auto const value = json.find("value");
        if (value == json.end() || !value->is_string())
            return refuse("a key's `value` is a text");
        item.key = *value;
        auto const characters = std::ranges::count_if(
            item.key, [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; });
        if (characters != 1)
            return refuse("a key's `value` is one character");
        return true;
    }

    bool readPlace(Json const& json, ActionItem& item)
    {
        for (auto const& [name, place] : { std::pair { "x", &item.x }, std::pair { "y", &item.y } }) {
            auto const value = json.find(name);
            if (value == json.end() || !value->is_number() || !std::isfinite(value->get<double>()))
                return refuse(std::string("a move's `") + name + "` is a number");
            *place = value->get<double>();
        }
        auto const origin = json.find("origin");
        if (origin == json.end() || *origin == "viewport")
            return true;
        if (*origin == "pointer") {
            item.origin = ActionItem::Origin::pointer;
            return true;
        }
        auto const element = elementIdOf(*origin);
        if (!element)
            return refuse("`origin` is \"viewport\", \"pointer\" or an element");
        item.origin = ActionItem::Origin::element;
        item.element = *element;
        return true;
    }

    std::optional<CommandError> m_error;
};

}

Answer<std::vector<ActionSource>> parseActions(Json const& parameters)
{
    return ActionReader().read(parameters);
}

}
