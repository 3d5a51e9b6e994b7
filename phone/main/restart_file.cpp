#include "phone/main/restart_file.hpp"

#include <unistd.h>

#include <cstdlib>
#include <fstream>

namespace phone {

Result<std::filesystem::path> writeRestartFile(RestartState const& state)
{
    std::error_code failure;
    std::string path = (std::filesystem::temp_directory_path(failure) / "corvel-restart-XXXXXX").string();
    int const file = mkstemp(path.data());
    if (file < 0)
        return Error { "the restarting phone cannot leave its state in " + path };
    close(file);
    Json faults = Json::array();
    for (auto const& [devicePath, fault] : state.faults)
        faults.push_back(Json::array({ devicePath, fileFaultName(fault) }));
    Json const json { { "date", state.clock.date }, { "timezone", state.clock.timezone },
        { "now", state.clock.now }, { "events", state.events }, { "root", state.root.string() },
        { "music", state.isMusicPlaying }, { "addressBook", state.addressBook }, { "absent", state.absent },
        { "faults", std::move(faults) } };
    std::ofstream stream(path);
    stream << json.dump(-1, ' ', false, Json::error_handler_t::replace);
    stream.close();
    if (!stream) {
        std::filesystem::remove(path, failure);
        return Error { "the restarting phone cannot leave its state in " + path };
    }
    return std::filesystem::path(path);
}

Result<RestartState> takeRestartFile(std::filesystem::path const& path)
{
    std::ifstream stream(path);
    Json const json = Json::parse(stream, nullptr, false);
    if (!json.is_object())
        return Error { path.string() + " is not what a restarting phone leaves" };
    RestartState state;
    try {
        state.clock.date = json.at("date").get<std::string>();
        state.clock.timezone = json.at("timezone").get<std::string>();
        state.clock.now = json.at("now").get<double>();
        state.events = json.at("events");
        state.root = json.at("root").get<std::string>();
        state.isMusicPlaying = json.at("music").get<bool>();
        state.addressBook = json.at("addressBook");
        state.absent = json.at("absent").get<std::vector<std::string>>();
        for (Json const& fault : json.at("faults"))
            state.faults.emplace_back(fault.at(0).get<std::string>(),
                fileFaultNamed(fault.at(1).get<std::string>()).value_or(FileFault::none));
    } catch (Json::exception const&) {
        return Error { path.string() + " is not what a restarting phone leaves" };
    }
    std::error_code failure;
    std::filesystem::remove(path, failure);
    return state;
}

}
