#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "shell/ApplicationIcon.h"

// The desktop must show the emblem that the window shows. This program writes it as the desktop
// wants it, and tells whether another drawing of it, which a desktop may prefer, looks the same.

namespace {

using namespace sonavault;

constexpr auto kUsage =
    "sonavault-icons FOLDER          writes the emblem into the folder, at each of its sizes\n"
    "sonavault-icons --same PNG      tells whether a picture looks like the emblem\n";

/// Of the four values of a pixel, 0 to 255. Two painters smooth an edge differently, and no eye
/// sees it.
constexpr double kMeanAllowed = 1.0;
constexpr int kLargestAllowed = 48;

QImage emblem(int size) {
    return applicationIcon()
        .pixmap(size, size)
        .toImage()
        .convertToFormat(QImage::Format_RGBA8888_Premultiplied);
}

int writeInto(const QString& folder) {
    for (const QSize size : applicationIcon().availableSizes()) {
        const QString file = folder + "/" + QString::number(size.width()) + ".png";
        if (emblem(size.width()).save(file, "PNG")) continue;
        std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
        return 1;
    }
    return 0;
}

struct Difference {
    double mean = 0;
    int largest = 0;
};

Difference differenceOf(const QImage& left, const QImage& right) {
    Difference difference;
    const qsizetype rowBytes = qsizetype{4} * left.width();
    double sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        const uchar* one = left.constScanLine(y);
        const uchar* other = right.constScanLine(y);
        for (qsizetype at = 0; at < rowBytes; ++at) {
            const int apart = std::abs(one[at] - other[at]);
            difference.largest = std::max(difference.largest, apart);
            sum += apart;
        }
    }
    difference.mean = sum / static_cast<double>(rowBytes * left.height());
    return difference;
}

int compareWith(const QString& file) {
    const QImage other = QImage(file).convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    const auto sizes = applicationIcon().availableSizes();
    if (!sizes.contains(other.size())) {
        std::fprintf(stderr, "%s is no picture of a size that the emblem has\n", qPrintable(file));
        return 1;
    }
    const auto [mean, largest] = differenceOf(emblem(other.width()), other);
    std::printf("%d x %d: %.2f of 255 apart on average, %d at most\n", other.width(),
                other.height(), mean, largest);
    return mean <= kMeanAllowed && largest <= kLargestAllowed ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList words = QGuiApplication::arguments();
    if (words.size() == 2 && !words[1].startsWith('-')) return writeInto(words[1]);
    if (words.size() == 3 && words[1] == "--same") return compareWith(words[2]);
    std::fputs(kUsage, stderr);
    return 2;
}
