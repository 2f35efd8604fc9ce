#include "hub/HubCommand.h"

#include <QJsonDocument>
#include <charconv>
#include <map>

namespace sonavault::demohub {
namespace {

using Kind = HubCommand::Kind;

const std::map<std::string, Kind>& plainCommands() {
    static const std::map<std::string, Kind> commands{
        {"refuse", Kind::refuse},      {"accept", Kind::accept},
        {"drop", Kind::drop},          {"stop-reading", Kind::stopReading},
        {"read", Kind::read},          {"silent", Kind::silent},
        {"speak", Kind::speak},        {"close-after-each-line", Kind::closeAfter},
        {"keep-open", Kind::keepOpen}, {"ping", Kind::ping},
        {"show", Kind::show},          {"quit", Kind::quit}};
    return commands;
}

/// Takes the first word off `rest`.
std::string takeWord(std::string& rest) {
    const auto begin = rest.find_first_not_of(' ');
    if (begin == std::string::npos) {
        rest.clear();
        return {};
    }
    const auto end = rest.find(' ', begin);
    std::string word = rest.substr(begin, end - begin);
    rest = end == std::string::npos ? "" : rest.substr(end + 1);
    return word;
}

template <class Number>
std::optional<Number> number(const std::string& text, int base) {
    Number value{};
    const char* end = text.data() + text.size();
    const auto [read, fault] = std::from_chars(text.data(), end, value, base);
    if (fault != std::errc() || read != end) return std::nullopt;
    return value;
}

/// The byte that the escape at `at` stands for; moves `at` to its last character.
std::optional<char> unescapedByte(const std::string& text, std::size_t& at) {
    if (++at >= text.size()) return std::nullopt;
    switch (text[at]) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case '\\':
            return '\\';
        case 'x': {
            const auto value = number<unsigned char>(text.substr(at + 1, 2), 16);
            if (!value || at + 2 >= text.size()) return std::nullopt;
            at += 2;
            return static_cast<char>(*value);
        }
        default:
            return std::nullopt;
    }
}

std::optional<std::string> unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            bytes += text[at];
            continue;
        }
        const auto byte = unescapedByte(text, at);
        if (!byte) return std::nullopt;
        bytes += *byte;
    }
    return bytes;
}

std::optional<HubCommand> parseDelay(std::string rest) {
    const auto milliseconds = number<int>(takeWord(rest), 10);
    if (!milliseconds || *milliseconds < 0 || !rest.empty()) return std::nullopt;
    return HubCommand{.kind = Kind::delay, .milliseconds = *milliseconds};
}

std::optional<HubCommand> parsePublish(std::string rest) {
    HubCommand command{.kind = Kind::publish};
    command.from = takeWord(rest);
    command.topic = takeWord(rest);
    if (command.topic.empty()) return std::nullopt;
    if (rest.empty()) return command;
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(rest));
    if (!json.isObject()) return std::nullopt;
    command.payload = json.object();
    return command;
}

}  // namespace

std::optional<HubCommand> parseHubCommand(const std::string& line) {
    std::string rest = line;
    const std::string word = takeWord(rest);
    if (word == "delay") return parseDelay(rest);
    if (word == "publish") return parsePublish(rest);
    if (word == "raw") {
        const auto bytes = unescaped(rest);
        if (!bytes) return std::nullopt;
        return HubCommand{.kind = Kind::raw, .text = *bytes};
    }
    const auto plain = plainCommands().find(word);
    if (plain == plainCommands().end() || !rest.empty()) return std::nullopt;
    return HubCommand{.kind = plain->second};
}

std::string hubCommandHelp() {
    return "While it runs it obeys these lines on standard input:\n"
           "  publish FROM TOPIC [JSON]  a publication in the name of a program\n"
           "  ping                       ping all programs\n"
           "  show                       the programs and values that are there\n"
           "  refuse, accept             stop listening, listen again\n"
           "  drop                       close all connections\n"
           "  delay MILLISECONDS         everything that goes out (0: no more)\n"
           "  stop-reading, read         leave what comes in where it is, read again\n"
           "  silent, speak              answer nothing, answer again\n"
           "  close-after-each-line, keep-open\n"
           "  raw TEXT                   send bytes to all; \\n \\r \\t \\\\ \\xHH\n"
           "  quit";
}

}  // namespace sonavault::demohub
