#include "phone/automation/error.hpp"

#include <iterator>

namespace phone {

namespace {

struct Row {
    ErrorCode code;
    int status;
    char const* name;
};

constexpr Row kRows[] {
    { ErrorCode::elementClickIntercepted, 400, "element click intercepted" },
    { ErrorCode::elementNotInteractable, 400, "element not interactable" },
    { ErrorCode::invalidArgument, 400, "invalid argument" },
    { ErrorCode::invalidElementState, 400, "invalid element state" },
    { ErrorCode::invalidSelector, 400, "invalid selector" },
    { ErrorCode::invalidSession, 404, "invalid session id" },
    { ErrorCode::moveTargetOutOfBounds, 500, "move target out of bounds" },
    { ErrorCode::noSuchAlert, 404, "no such alert" },
    { ErrorCode::noSuchElement, 404, "no such element" },
    { ErrorCode::noSuchWindow, 404, "no such window" },
    { ErrorCode::scriptTimeout, 500, "script timeout" },
    { ErrorCode::sessionNotCreated, 500, "session not created" },
    { ErrorCode::staleElement, 404, "stale element reference" },
    { ErrorCode::timeout, 500, "timeout" },
    { ErrorCode::unableToCaptureScreen, 500, "unable to capture screen" },
    { ErrorCode::unknownCommand, 404, "unknown command" },
    { ErrorCode::unknownError, 500, "unknown error" },
    { ErrorCode::unknownMethod, 405, "unknown method" },
    { ErrorCode::unsupportedOperation, 500, "unsupported operation" },
    { ErrorCode::forbidden, 403, "unknown error" },
    { ErrorCode::payloadTooLarge, 413, "invalid argument" },
    { ErrorCode::unsupportedMediaType, 415, "invalid argument" },
};

Row const& rowOf(ErrorCode code)
{
    for (Row const& row : kRows)
        if (row.code == code)
            return row;
    assert(false);
    return *std::rbegin(kRows);
}

}

char const* errorName(ErrorCode code) { return rowOf(code).name; }

int httpStatus(ErrorCode code) { return rowOf(code).status; }

std::optional<ErrorCode> errorCodeNamed(std::string_view name)
{
    for (Row const& row : kRows)
        if (row.name == name)
            return row.code;
    return {};
}

Json errorValue(CommandError const& error)
{
    std::string const name = errorName(error.code);
    return Json::object({ { "error", name },
        { "message", error.message.empty() ? name : name + ": " + error.message }, { "stacktrace", "" } });
}

}
