#include "views/KeyResponderView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScrollArea>
#include <QWindow>
#include <algorithm>
#include <array>

#include "review/WindowLayout.h"
#include "views/Hints.h"
#include "views/Painting.h"

namespace sonavault {
namespace {

constexpr auto kLogs = "logs";
constexpr auto kAirchecks = "airchecks";

bool isTabStop(const QWidget& view) {
    return (view.focusPolicy() & Qt::TabFocus) != 0 && view.isEnabled() && view.isVisible() &&
           !view.focusProxy();
}

void scrollTo(QWidget& stop) {
    for (QWidget* around = stop.parentWidget(); around; around = around->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(around)) area->ensureWidgetVisible(&stop);
    }
}

}  // namespace

KeyResponderView::KeyResponderView()
    : bannerView_(new BannerView(this)),
      tabBar_(new SVTabBarView(this)),
      statusBarView_(new StatusBarView(this)) {
    setFocusPolicy(Qt::ClickFocus);
    setMinimumSize(kLeastContentSize);
    setAutoFillBackground(true);
    setPalette(QPalette(Qt::white));
    bannerView_->setObjectName(QStringLiteral("bannerView"));
    statusBarView_->setObjectName(QStringLiteral("statusBarView"));
    bannerView_->onHelpClicked = [this] {
        if (onHelpClicked) onHelpClicked();
    };
    statusBarView_->onSettingsClicked = [this] {
        if (onSettingsClicked) onSettingsClicked();
    };
    buildTabBar();
    resize(kContentSize);
    layOut();
    // Moves of the pointer go to whichever view is under it, and to none that doesn't ask for them.
    qApp->installEventFilter(this);
}

void KeyResponderView::buildTabBar() {
    tabBar_->setObjectName(QStringLiteral("tabBar"));
    tabBar_->setTabs({{kLogs, "Audio Logging"}, {kAirchecks, "Airchecks"}});
    tabBar_->setTabHints({{kLogs, "Audio Logging — the day timeline, lanes, and scrubber."},
                          {kAirchecks, "Airchecks — scheduled MP3 extracts of recurring shows."}});
    tabBar_->onSelectionChanged = [this](const std::string& id) { tabSelected(id); };
}

void KeyResponderView::setTabs(QWidget* logs, QWidget* airchecks) {
    logsPage_ = logs;
    airchecksPage_ = airchecks;
    if (airchecksPage_) airchecksPage_->setObjectName(QStringLiteral("airchecksTabView"));
    for (QWidget* page : {logsPage_, airchecksPage_}) {
        if (page) page->setParent(this);
    }
    tabBar_->raise();
    layOut();
    showActiveTab();
}

void KeyResponderView::tabSelected(const std::string& id) {
    activeTab_ = id;
    showActiveTab();
    // What was under the pointer has changed without a move of it.
    if (pointer_) updateHint();
}

void KeyResponderView::showActiveTab() {
    if (logsPage_) logsPage_->setVisible(activeTab_ == kLogs);
    if (airchecksPage_) airchecksPage_->setVisible(activeTab_ == kAirchecks);
}

void KeyResponderView::resizeEvent(QResizeEvent*) {
    layOut();
}

void KeyResponderView::layOut() {
    const WindowLayout layout =
        layOutWindow({static_cast<double>(width()), static_cast<double>(height())});
    bannerView_->setGeometry(toQRect(layout.banner));
    tabBar_->setGeometry(toQRect(layout.tabBar));
    statusBarView_->setGeometry(toQRect(layout.statusBar));
    for (QWidget* page : {logsPage_, airchecksPage_}) {
        if (page) page->setGeometry(toQRect(layout.tab));
    }
}

bool KeyResponderView::eventFilter(QObject* receiver, QEvent* event) {
    if (event->type() == QEvent::MouseMove && isOfThisWindow(receiver)) {
        const auto* move = static_cast<QMouseEvent*>(event);
        // A drag keeps the text of where it began.
        if (move->buttons() == Qt::NoButton) pointerMoved(move->globalPosition().toPoint());
    }
    return QWidget::eventFilter(receiver, event);
}

bool KeyResponderView::isOfThisWindow(const QObject* receiver) const {
    if (receiver->isWindowType()) return receiver == window()->windowHandle();
    const auto* view = qobject_cast<const QWidget*>(receiver);
    return view && view->window() == window();
}

bool KeyResponderView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Enter:
            pointerMoved(static_cast<QEnterEvent*>(event)->globalPosition().toPoint());
            break;
        case QEvent::Leave:
        case QEvent::WindowDeactivate:
            pointerLeft();
            break;
        default:
            break;
    }
    return QWidget::event(event);
}

void KeyResponderView::pointerMoved(QPoint globalPoint) {
    if (!isActiveWindow()) return;
    pointer_ = mapFromGlobal(globalPoint);
    updateHint();
}

void KeyResponderView::pointerLeft() {
    pointer_.reset();
    lastHinted_ = {};
    statusBarView_->restoreStatus();
}

void KeyResponderView::updateHint() {
    HintedView found = findHinted(*pointer_, *this);
    if (found == lastHinted_) return;
    lastHinted_ = std::move(found);
    if (lastHinted_.view) {
        statusBarView_->showHint(lastHinted_.text.toStdString());
    } else {
        statusBarView_->restoreStatus();
    }
}

// Views come into being and go while the program runs, and the order of their making says nothing:
// the Tab key goes through the regions from the top of the window to its foot.
int KeyResponderView::readingPlace(const QWidget& view) const {
    const std::array<const QWidget*, 5> regions{bannerView_, tabBar_, logsPage_, airchecksPage_,
                                                statusBarView_};
    const auto region = std::find_if(regions.begin(), regions.end(), [&](const QWidget* candidate) {
        return candidate && (candidate == &view || candidate->isAncestorOf(&view));
    });
    return static_cast<int>(region - regions.begin());
}

QWidgetList KeyResponderView::tabStops() const {
    QWidgetList stops;
    for (QWidget* view = nextInFocusChain(); view != this; view = view->nextInFocusChain()) {
        if (isAncestorOf(view) && isTabStop(*view)) stops.append(view);
    }
    std::stable_sort(stops.begin(), stops.end(), [this](const QWidget* one, const QWidget* other) {
        return readingPlace(*one) < readingPlace(*other);
    });
    return stops;
}

bool KeyResponderView::focusNextPrevChild(bool next) {
    const QWidgetList stops = tabStops();
    if (stops.isEmpty()) return false;
    const qsizetype current = stops.indexOf(window()->focusWidget());
    // From outside of them, the first or the last.
    const qsizetype from = current < 0 && !next ? stops.size() : current;
    const qsizetype to = (from + (next ? 1 : -1) + stops.size()) % stops.size();
    stops.at(to)->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    scrollTo(*stops.at(to));
    return true;
}

}  // namespace sonavault
