#pragma once

#include <mutex>
#include <string_view>

namespace sonavault {

/// Where the program speaks to whoever captured its output: plain lines, no levels, no time stamps.
///
/// Thread: any.
class Log {
  public:
    virtual ~Log() = default;

    /// `text` is one line without its line feed.
    virtual void line(std::string_view text) = 0;
};

/// Lines on standard output, written at once. A reader that stalls or goes away costs lines, never
/// time: what can't be written without waiting is dropped.
class StandardOutputLog final : public Log {
  public:
    /// Range: any open descriptor; a pipe, a terminal or a file. Not closed at the end.
    explicit StandardOutputLog(int descriptor = 1);
    ~StandardOutputLog() override;
    StandardOutputLog(const StandardOutputLog&) = delete;
    StandardOutputLog& operator=(const StandardOutputLog&) = delete;

    /// A line too long for the room there is may be torn; the line after it then begins afresh.
    void line(std::string_view text) override;

  private:
    void writeWhatFits(std::string_view bytes);

    const int descriptor_;
    const int terminal_;  // our own way to the terminal behind descriptor_, else negative
    std::mutex writing_;
    bool insideLine_ = false;  // guarded by writing_: the last byte written was no line feed
};

}  // namespace sonavault
