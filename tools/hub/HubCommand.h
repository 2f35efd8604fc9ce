#pragma once

#include <QJsonObject>
#include <optional>
#include <string>

namespace sonavault::demohub {

/// What a person may tell the running hub.
struct HubCommand {
    enum class Kind {
        refuse,       ///< listen no more, as a hub that is not running
        accept,       ///< listen again
        drop,         ///< close all connections
        delay,        ///< everything that goes out, by `milliseconds`
        stopReading,  ///< leave what comes in where it is
        read,         ///< read again
        silent,       ///< read everything and answer nothing
        speak,        ///< answer again
        closeAfter,   ///< close each connection after every line that comes in
        keepOpen,     ///< and no more
        raw,          ///< send `text` as it stands to all
        publish,      ///< in the name of `from`, on `topic`, with `payload`
        ping,         ///< all programs
        show,         ///< the programs and the values that are there
        quit,
    };

    Kind kind = Kind::quit;
    int milliseconds = 0;
    std::string text{};
    std::string from{};
    std::string topic{};
    QJsonObject payload{};

    bool operator==(const HubCommand&) const = default;
};

/// Absent when the line is no command. In `raw TEXT`, \n, \r, \t, \\ and \xHH stand for bytes.
std::optional<HubCommand> parseHubCommand(const std::string& line);

/// The commands in words, for --help.
std::string hubCommandHelp();

}  // namespace sonavault::demohub
