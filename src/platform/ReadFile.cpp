#include "platform/ReadFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "platform/SystemError.h"

namespace sonavault {

namespace {

Result<std::string> lastError() {
    return Result<std::string>::failure(systemWords(errno));
}

}  // namespace

Result<std::string> readWholeFile(const std::filesystem::path& file) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(file.c_str(), "rb"),
                                                             &std::fclose);
    if (!in) return lastError();
    std::string bytes;
    std::array<char, 65536> piece;
    while (const auto count = std::fread(piece.data(), 1, piece.size(), in.get()))
        bytes.append(piece.data(), count);
    if (std::ferror(in.get())) return lastError();
    return bytes;
}

}  // namespace sonavault
