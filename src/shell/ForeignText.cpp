#include "shell/ForeignText.h"

#include <QString>
#include <utility>

namespace sonavault {
namespace {

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool isCommand(QChar character) {
    return character.category() == QChar::Other_Control ||
           character.category() == QChar::Separator_Line ||
           character.category() == QChar::Separator_Paragraph;
}

}  // namespace

std::string shortened(std::string text, std::size_t mostBytes) {
    if (text.size() <= mostBytes) return text;
    std::size_t end = mostBytes;
    while (end > 0 && continuesCharacter(text[end])) --end;
    text.resize(end);
    return text;
}

std::string printable(const std::string& text) {
    QString characters = QString::fromStdString(shortened(text));
    for (QChar& each : characters)
        if (isCommand(each)) each = QLatin1Char(' ');
    return characters.toStdString();
}

}  // namespace sonavault
