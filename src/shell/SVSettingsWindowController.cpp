#include "shell/SVSettingsWindowController.h"

#include <QApplication>
#include <QScreen>
#include <QShortcut>
#include <array>

#include "shell/SizeEstimates.h"
#include "views/ControlColours.h"
#include "views/Painting.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kWidth = 580;
constexpr int kHeight = 320;
constexpr QColor kGround{250, 250, 250};

constexpr std::array kLevelTips{
    "Crummy — 8 kbps. Smallest files; voice only.",
    "Pretty Good — 16 kbps. Good for routine logging.",
    "Good — 24 kbps. The default. Plenty for most stations.",
    "Really Good — 48 kbps. Music recognizable; airchecks worth keeping.",
    "Crazy Good — 96 kbps. Near broadcast quality; largest files."};

// The window is laid out from its lower left corner.
QRect fromBottom(int x, int y, int width, int height) {
    return {x, kHeight - y - height, width, height};
}

// A line of text over the whole width.
QRect line(int y, int height) {
    return fromBottom(0, y, kWidth, height);
}

std::unique_ptr<QWidget> makeWindow() {
    auto window = std::make_unique<QWidget>(
        nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                     Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    window->setWindowTitle(QStringLiteral("Sonavault Settings"));
    window->setFixedSize(kWidth, kHeight);
    // It is not what keeps the program running.
    window->setAttribute(Qt::WA_QuitOnClose, false);
    QPalette colours = window->palette();
    colours.setColor(QPalette::Window, kGround);
    window->setPalette(colours);
    auto* close = new QShortcut(QKeySequence::Close, window.get());
    QObject::connect(close, &QShortcut::activated, window.get(), &QWidget::close);
    return window;
}

}  // namespace

SVSettingsWindowController::SVSettingsWindowController(Preferences& preferences)
    : preferences_(preferences), window_(makeWindow()) {
    buildContents();
    slider_->setValue(SVQualityLevel::current(preferences_).rawValue());
    refreshLabels();
    QObject::connect(slider_, &QSlider::valueChanged, window_.get(),
                     [this](int value) { sliderChanged(value); });
    // Who takes the knob and lets it go where it stood has chosen that level as well.
    QObject::connect(slider_, &QSlider::sliderReleased, window_.get(),
                     [this] { sliderChanged(slider_->value()); });
    centre();
}

SVSettingsWindowController::~SVSettingsWindowController() = default;

void SVSettingsWindowController::showWindow() {
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

QWidget& SVSettingsWindowController::window() {
    return *window_;
}

void SVSettingsWindowController::buildContents() {
    addText(QStringLiteral("Quality"), interfaceFont(20, QFont::DemiBold), kColorLabel,
            line(270, 28), QStringLiteral("Recording quality — drag the slider below."));
    qualityHeadline_ = addText({}, interfaceFont(32), kColorLabel, line(200, 48),
                               QStringLiteral("Current quality setting — moves with the slider."));
    slider_ = new QualitySlider(window_.get());
    slider_->setGeometry(fromBottom(60, 150, 460, 25));
    const QString sliderTip =
        QStringLiteral("Drag to choose recording quality. Higher = clearer audio + larger files.");
    slider_->setToolTip(sliderTip);
    slider_->setAccessibleName(QStringLiteral("Quality"));
    slider_->setAccessibleDescription(sliderTip);
    buildLevelLabels();
    const QFont detail = interfaceFont(14);
    detailLabel_ =
        addText({}, detail, kColorLabel, line(80, 20),
                QStringLiteral("Sample rate, channel count, and bitrate of the selected quality."));
    sizeLabel_ = addText({}, detail, kColorLabel, line(64, 20),
                         QStringLiteral("Approximate file size for one hour of recording."));
    dayLabel_ = addText({}, detail, kColorLabel, line(44, 20),
                        QStringLiteral("Approximate file size for one full 24-hour day."));
    addText(QStringLiteral("Selection saves immediately. Changes take effect when the next "
                           "recording starts."),
            interfaceFont(11), kColorTertiaryLabel, line(20, 16), {});
}

void SVSettingsWindowController::buildLevelLabels() {
    for (const SVQualityLevel level : SVQualityLevel::allCases) {
        const int index = level.rawValue();
        addText(toQString(level.label()), interfaceFont(10), kColorSecondaryLabel,
                fromBottom(5 + 115 * index, 120, 110, 16),
                QString::fromUtf8(kLevelTips.at(static_cast<std::size_t>(index))));
    }
}

TextView* SVSettingsWindowController::addText(const QString& text, const QFont& font,
                                              const QColor& colour, const QRect& frame,
                                              const QString& tip) {
    auto* label = new TextView(text, font, colour, window_.get());
    label->setAlignment(Qt::AlignCenter);
    label->setGeometry(frame);
    label->setToolTip(tip);
    label->setAccessibleDescription(tip);
    return label;
}

void SVSettingsWindowController::centre() {
    const QWidget* active = QApplication::activeWindow();
    const QScreen* screen = active ? active->screen() : QApplication::primaryScreen();
    if (!screen) return;
    QRect frame({}, QSize(kWidth, kHeight));
    frame.moveCenter(screen->availableGeometry().center());
    window_->move(frame.topLeft());
}

void SVSettingsWindowController::sliderChanged(int value) {
    preferences_.setInteger(kQualityLevelKey, value);
    refreshLabels();
}

void SVSettingsWindowController::refreshLabels() {
    const SVQualityLevel level = chosenLevel();
    qualityHeadline_->showText(toQString(level.label()));
    detailLabel_->showText(toQString(level.detailString()));
    sizeLabel_->showText(toQString(hourEstimate(level.oneHourMB())));
    dayLabel_->showText(toQString(dayEstimate(level.oneHourMB())));
}

SVQualityLevel SVSettingsWindowController::chosenLevel() const {
    for (const SVQualityLevel level : SVQualityLevel::allCases)
        if (level.rawValue() == slider_->value()) return level;
    return SVQualityLevel::kDefault;
}

}  // namespace sonavault
