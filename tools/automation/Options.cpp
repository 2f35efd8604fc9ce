#include "automation/Options.h"

#include <QCommandLineParser>
#include <QFile>

namespace sonavault::automation {

namespace {

void describeConnection(QCommandLineParser& parser) {
    parser.addOption({"host", "Where the recorder runs (127.0.0.1).", "name", "127.0.0.1"});
    parser.addOption({"port", "Its audio port (9171).", "number", "9171"});
    parser.addOption({"rate", "Samples a second, 8000 to 192000 (44100).", "hertz", "44100"});
    parser.addOption({"channels", "1 to 8, all alike (2).", "number", "2"});
    parser.addOption({"byte-order", "little or big (little).", "order", "little"});
    parser.addOption({"chunk", "What is sent at once, 5 to 100 (20).", "milliseconds", "20"});
    parser.addOption({"once",
                      "End when the audio connection is lost or refused, instead of trying "
                      "again every half second."});
}

void describeSound(QCommandLineParser& parser) {
    parser.addOption(
        {"signal",
         "programme: talk, songs, breaks, voicetracks and alerts by the clock; tone; silence; "
         "noise; tone-bursts: 100 ms of tone at each whole second of the wall clock; "
         "clock-chords: at each second a chord that tells its time of day in UTC, over a faint "
         "tone (programme).",
         "kind", "programme"});
    parser.addOption({"frequency", "Of the tones (1000).", "hertz", "1000"});
    parser.addOption({"level",
                      "Root mean square in dBFS while it sounds, -120 to -6 (-20). A programme "
                      "keeps it on average only.",
                      "dBFS", "-20"});
    parser.addOption({"seed", "Another number, another programme (1).", "number", "1"});
}

void describeMarkers(QCommandLineParser& parser) {
    parser.addOption({"marker-port", "The recorder's marker port (9172).", "number", "9172"});
    parser.addOption({"markers",
                      "off: only those that are typed; demo: those of the programme; else a file "
                      "with a line for each, its second and what would be typed: \"12.5 marker "
                      "mic_start Nora\" (off).",
                      "off, demo or file", "off"});
    parser.addOption({"marker-byte-order", "little or big (little).", "order", "little"});
}

void describeTime(QCommandLineParser& parser) {
    parser.addOption({"duration", "End after so many seconds.", "seconds"});
    parser.addOption({"drop-at",
                      "Close the connection at that second of the run and connect again "
                      "so many seconds later. May be given several times.",
                      "second:duration"});
    parser.addOption({"stall-at",
                      "Send nothing from that second on for so many seconds, but stay "
                      "connected. May be given several times.",
                      "second:duration"});
}

void describe(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Sends a station's air and its markers to the recorder, as a playout automation does.\n"
        "While it runs it obeys these lines on standard input:\n"
        "  drop, stall SECONDS, resume          the audio link\n"
        "  marker TYPE [duration=S] [clock=HH:MM:SS] [file=NAME] [test] [LABEL...]\n"
        "  marker-text TEXT                     a message of any text\n"
        "  marker-raw HEX                       any bytes, with no length before them\n"
        "  marker-drop                          the marker link, for half a second\n"
        "  quit");
    parser.addOption({{"h", "help"}, "Show this help."});
    describeConnection(parser);
    describeSound(parser);
    describeMarkers(parser);
    describeTime(parser);
}

/// Reads the options one by one and keeps the first thing that is wrong with them.
class Reader {
  public:
    explicit Reader(const QCommandLineParser& parser) : parser_(parser) {}

    const std::string& fault() const { return fault_; }

    double number(const QString& option, double least, double most) {
        bool isNumber = false;
        const double value = parser_.value(option).toDouble(&isNumber);
        if (!isNumber || !(value >= least && value <= most)) blame(option, parser_.value(option));
        return value;
    }

    int wholeNumber(const QString& option, int least, int most) {
        bool isNumber = false;
        const int value = parser_.value(option).toInt(&isNumber);
        if (!isNumber || value < least || value > most) blame(option, parser_.value(option));
        return value;
    }

    bool isBig(const QString& option) {
        const QString order = parser_.value(option);
        if (order != "big" && order != "little") blame(option, order);
        return order == "big";
    }

    SignalKind signalKind(const QString& option) {
        const auto kind = signalKindNamed(parser_.value(option).toStdString());
        if (!kind) blame(option, parser_.value(option));
        return kind.value_or(SignalKind::programme);
    }

    void interruptions(const QString& option, AirState state, AirPlan& plan) {
        for (const QString& text : parser_.values(option)) {
            const auto interruption = parseInterruption(state, text.toStdString());
            if (interruption)
                plan.add(*interruption);
            else
                blame(option, text);
        }
    }

    /// Where the markers come from, read into `markers`.
    void markerSource(const QString& option, MarkerOptions& markers) {
        const QString source = parser_.value(option);
        if (source == "off") return;
        if (source == "demo") {
            markers.source = MarkerSource::demo;
            return;
        }
        markers.source = MarkerSource::script;
        QFile file(source);
        if (!file.open(QIODevice::ReadOnly)) return blame(option, source);
        auto script = parseMarkerScript(file.readAll().toStdString());
        if (script)
            markers.script = std::move(script.value());
        else
            blame(option, QString::fromStdString(script.error()));
    }

  private:
    void blame(const QString& option, const QString& value) {
        if (fault_.empty())
            fault_ = "--" + option.toStdString() + ": \"" + value.toStdString() +
                     "\" is not possible here";
    }

    const QCommandLineParser& parser_;
    std::string fault_;
};

MarkerOptions readMarkers(Reader& read, const Options& options) {
    MarkerOptions markers;
    markers.host = options.host;
    markers.seed = options.signal.seed;
    markers.port = static_cast<std::uint16_t>(read.wholeNumber("marker-port", 1, 65535));
    markers.bigEndian = read.isBig("marker-byte-order");
    read.markerSource("markers", markers);
    return markers;
}

}  // namespace

Result<Options> parseOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    describe(parser);
    if (!parser.parse(arguments)) return Result<Options>::failure(parser.errorText().toStdString());
    Options options;
    options.wantsHelp = parser.isSet("help");
    if (!parser.positionalArguments().isEmpty())
        return Result<Options>::failure("\"" + parser.positionalArguments().first().toStdString() +
                                        "\" is no option");
    Reader read(parser);
    options.host = parser.value("host").toStdString();
    options.port = static_cast<std::uint16_t>(read.wholeNumber("port", 1, 65535));
    options.format = {read.wholeNumber("rate", 8000, 192000), read.wholeNumber("channels", 1, 8),
                      read.isBig("byte-order")};
    options.chunkSec = read.number("chunk", 5, 100) / 1000;
    options.signal.kind = read.signalKind("signal");
    options.signal.sampleRate = options.format.sampleRate;
    options.signal.frequency = read.number("frequency", 1, options.format.sampleRate / 2.0);
    options.signal.level = read.number("level", -120, -6);
    options.signal.seed = static_cast<unsigned>(read.wholeNumber("seed", 0, 1'000'000'000));
    if (parser.isSet("duration")) options.durationSec = read.number("duration", 0, 1e9);
    read.interruptions("drop-at", AirState::dropped, options.plan);
    read.interruptions("stall-at", AirState::stalled, options.plan);
    options.once = parser.isSet("once");
    options.markers = readMarkers(read, options);
    if (!read.fault().empty()) return Result<Options>::failure(read.fault());
    return options;
}

std::string helpText() {
    QCommandLineParser parser;
    describe(parser);
    return parser.helpText().toStdString();
}

}  // namespace sonavault::automation
