#include "hub/HubOptions.h"

#include <QCommandLineParser>

#include "hub/HubCommand.h"
#include "hub/SwitchboardClientImpl.h"

namespace sonavault::demohub {
namespace {

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(QString::fromStdString(
        "A message hub for demonstrations and tests: passes on what its clients send, and\n"
        "misbehaves on command.\n" +
        hubCommandHelp()));
    parser.addOption({{"h", "help"}, "Show this help."});
    parser.addOption({"socket",
                      "Where to listen. Without it the path in SWITCHBOARD_SOCKET, or else " +
                          QString::fromUtf8(kSwitchboardSocketPath.data()) + ".",
                      "path"});
}

}  // namespace

Result<HubOptions> parseHubOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments))
        return Result<HubOptions>::failure(parser.errorText().toStdString());
    if (!parser.positionalArguments().isEmpty())
        return Result<HubOptions>::failure(
            "\"" + parser.positionalArguments().first().toStdString() + "\" is no option");
    HubOptions options;
    options.wantsHelp = parser.isSet("help");
    options.socketPath =
        parser.isSet("socket") ? parser.value("socket").toStdString() : switchboardSocketPath();
    if (options.socketPath.empty()) return Result<HubOptions>::failure("--socket: no path given");
    return options;
}

std::string hubHelpText() {
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText().toStdString();
}

}  // namespace sonavault::demohub
