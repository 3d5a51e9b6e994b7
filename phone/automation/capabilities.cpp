#include "phone/automation/capabilities.hpp"

#include "phone/kernel/ascii.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace phone {

namespace {

constexpr std::string_view kStandard[] { "browserName", "browserVersion", "platformName",
    "acceptInsecureCerts", "pageLoadStrategy", "proxy", "setWindowRect", "timeouts",
    "strictFileInteractability", "unhandledPromptBehavior", "userAgent", "webSocketUrl" };
constexpr std::string_view kVendorPrefix = "appium:";
constexpr double kLargestTimeout = 9007199254740991;   // 2^53 - 1, milliseconds

bool isOneOf(Json const& value, std::initializer_list<char const*> words)
{
    return value.is_string() && std::ranges::any_of(words, [&](char const* word) {
        return value.get_ref<std::string const&>() == word;
    });
}

bool isStandard(std::string_view name) { return std::ranges::find(kStandard, name) != std::end(kStandard); }

Answer<void> checkProxy(Json const& proxy)
{
    CommandError const wrong = invalidArgument("`proxy` is no proxy configuration");
    if (!proxy.is_object())
        return wrong;
    for (auto const& [key, value] : proxy.items()) {
        bool const isGood = key == "proxyType"
            ? isOneOf(value, { "pac", "direct", "autodetect", "system", "manual" })
            : key == "noProxy" ? value.is_array()
                && std::ranges::all_of(value, [](Json const& each) { return each.is_string(); })
            : key == "socksVersion"
            ? value.is_number_integer() && value.get<double>() >= 0 && value.get<double>() <= 255
            : (key == "proxyAutoconfigUrl" || key == "ftpProxy" || key == "httpProxy" || key == "sslProxy"
                  || key == "socksProxy")
                && value.is_string();
        if (!isGood)
            return wrong;
    }
    return {};
}

Answer<void> checkStandard(std::string const& name, Json const& value)
{
    auto const expect = [&name](bool isGood, char const* kind) -> Answer<void> {
        if (isGood)
            return {};
        return invalidArgument("`" + name + "` is " + kind);
    };
    if (name == "acceptInsecureCerts" || name == "setWindowRect" || name == "strictFileInteractability"
        || name == "webSocketUrl")
        return expect(value.is_boolean(), "true or false");
    if (name == "pageLoadStrategy")
        return expect(isOneOf(value, { "none", "eager", "normal" }), "none, eager or normal");
    if (name == "unhandledPromptBehavior") {
        auto const isBehaviour = [](Json const& each) {
            return isOneOf(
                each, { "dismiss", "accept", "dismiss and notify", "accept and notify", "ignore" });
        };
        return expect(isBehaviour(value) || (value.is_object() && std::ranges::all_of(value, isBehaviour)),
            "a prompt's handling");
    }
    if (name == "timeouts") {
        Json timeouts = Json::object();
        return mergeTimeouts(value, timeouts);
    }
    if (name == "proxy")
        return checkProxy(value);
    return expect(value.is_string(), "a text");
}

// Checks one set and brings its keys into one form: nulls go, `appium:options` unfolds, `appium:platformName` is platformName.
Answer<Json> normalized(Json const& given)
{
    std::string unprefixed;
    Json set = Json::object();
    for (auto const& [key, value] : given.items()) {
        if (value.is_null())
            continue;
        if (!isStandard(key) && key.find(':') == std::string::npos) {
            unprefixed += (unprefixed.empty() ? "" : ", ") + key;
            continue;
        }
        if (key == "appium:options") {
            if (!value.is_object())
                return invalidArgument("`appium:options` is an object");
            for (auto const& [inner, innerValue] : value.items()) {
                std::string const name =
                    inner.starts_with(kVendorPrefix) ? inner : std::string(kVendorPrefix) + inner;
                if (!innerValue.is_null())
                    set[name] = innerValue;
            }
            continue;
        }
        set[key] = value;
    }
    if (!unprefixed.empty())
        return invalidArgument("All non-standard capabilities should have a vendor prefix. The following "
                               "capabilities did not have one: "
            + unprefixed);
    Json result = Json::object();
    for (auto const& [key, value] : set.items()) {
        std::string const bare = key.starts_with(kVendorPrefix) ? key.substr(kVendorPrefix.size()) : key;
        std::string const name = isStandard(bare) ? bare : key;
        if (isStandard(name)) {
            if (auto const checked = checkStandard(name, value); !checked)
                return checked.error();
        }
        result[name] = value;
    }
    return result;
}

// Why the phone can't serve the set; empty when it can.
std::string obstacle(Json const& set, PhoneFacts const& facts)
{
    auto const text = [&set](char const* name) {
        auto const at = set.find(name);
        return at != set.end() && at->is_string() ? at->get<std::string>() : std::string();
    };
    auto const differs = [&](char const* name, std::string const& served) {
        return set.contains(name) && lowercase(text(name)) != lowercase(served);
    };
    if (differs("platformName", "iOS"))
        return "the platform is iOS";
    if (!text("browserName").empty())
        return "a phone has no browser";
    if (differs("appium:automationName", "XCUITest"))
        return "the automation is XCUITest";
    if (differs("appium:bundleId", facts.bundleId))
        return "the application is " + facts.bundleId;
    if (differs("appium:platformVersion", facts.systemVersion))
        return "the phone runs iOS " + facts.systemVersion + "; `phone: boot` starts another version";
    return {};
}

}

Answer<void> mergeTimeouts(Json const& given, Json& timeouts)
{
    if (!given.is_object())
        return invalidArgument("timeouts are an object");
    Json merged = timeouts;
    for (auto const& [key, value] : given.items()) {
        bool const isKnown = key == "script" || key == "pageLoad" || key == "implicit";
        if (!isKnown)
            continue;
        double const number = value.is_number() ? value.get<double>() : -1;
        bool const isNumber = number >= 0 && number <= kLargestTimeout && number == std::floor(number);
        if (!isNumber && !(key == "script" && value.is_null()))
            return invalidArgument("`" + key + "` is a whole number of milliseconds up to 2^53 - 1");
        if (value.is_null())
            merged[key] = nullptr;
        else
            merged[key] = static_cast<std::int64_t>(number);
    }
    timeouts = std::move(merged);
    return {};
}

Answer<SessionRequest> requestedSession(Json const& parameters, PhoneFacts const& facts)
{
    auto const at = parameters.find("capabilities");
    if (at == parameters.end() || !at->is_object())
        return invalidArgument("`capabilities` is an object");
    Json const always = at->value("alwaysMatch", Json::object());
    Json const first = at->value("firstMatch", Json::array({ Json::object() }));
    if (!always.is_object())
        return invalidArgument("`alwaysMatch` is an object");
    if (!first.is_array() || first.empty()
        || !std::ranges::all_of(first, [](Json const& each) { return each.is_object(); }))
        return invalidArgument("`firstMatch` is an array of at least one object");

    auto const base = normalized(always);
    if (!base)
        return base.error();
    std::vector<Json> sets;
    for (Json const& each : first) {
        auto const one = normalized(each);
        if (!one)
            return one.error();
        Json merged = *base;
        for (auto const& [key, value] : one->items()) {
            if (merged.contains(key))
                return invalidArgument("`" + key + "` is in `alwaysMatch` and in `firstMatch`");
            merged[key] = value;
        }
        sets.push_back(std::move(merged));
    }

    std::string obstacles;
    for (Json const& set : sets) {
        if (auto const why = obstacle(set, facts); !why.empty()) {
            obstacles += (obstacles.empty() ? "" : "; ") + why;
            continue;
        }
        SessionRequest request;
        request.timeouts = Json::object({ { "script", 30000 }, { "pageLoad", 300000 }, { "implicit", 0 } });
        if (set.contains("timeouts"))
            static_cast<void>(mergeTimeouts(set["timeouts"], request.timeouts));
        if (auto const limit = set.find("appium:newCommandTimeout"); limit != set.end()) {
            if (!limit->is_number() || !(limit->get<double>() >= 0))
                return invalidArgument("`appium:newCommandTimeout` is a number of seconds");
            request.newCommandTimeout = limit->get<double>();
        }
        Json& answer = request.capabilities;
        answer = Json::object({ { "platformName", "iOS" }, { "appium:automationName", "XCUITest" },
            { "appium:platformVersion", facts.systemVersion }, { "appium:deviceName", "iPhone" },
            { "appium:udid", "00000000-0000-0000-0000-000000000001" }, { "appium:bundleId", facts.bundleId },
            { "acceptInsecureCerts", false }, { "pageLoadStrategy", "normal" }, { "proxy", Json::object() },
            { "setWindowRect", false }, { "strictFileInteractability", false },
            { "unhandledPromptBehavior", "ignore" } });
        for (auto const& [key, value] : set.items()) {
            bool const isOurs = key == "platformName" || key == "browserName" || key == "browserVersion"
                || key == "webSocketUrl" || key == "userAgent" || key == "setWindowRect"
                || key == "appium:automationName" || key == "appium:mjpegServerPort";
            if (!isOurs)
                answer[key] = value;
        }
        answer["timeouts"] = request.timeouts;
        return request;
    }
    return CommandError { ErrorCode::sessionNotCreated, obstacles };
}

Json flatCapabilities(Json const& capabilities)
{
    Json flat = Json::object();
    for (auto const& [key, value] : capabilities.items())
        flat[key.starts_with(kVendorPrefix) ? key.substr(kVendorPrefix.size()) : key] = value;
    return flat;
}

}
