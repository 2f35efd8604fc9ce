#include "shell/KeyResponderView.h"

#include <QVBoxLayout>

#include "views/Theme.h"

namespace sonavault {

namespace {

constexpr int kEmptyStateMargin = 24;

}  // namespace

KeyResponderView::KeyResponderView()
    : dayList_(new DayListView(this)),
      emptyState_(new TextView({}, interfaceFont(13), kColorSlogan, this)),
      recordingPanel_(new RecordingPanel(this)),
      statusBar_(new StatusBarView(this)) {
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(kLeastContentSize);
    resize(kContentSize);
    setAutoFillBackground(true);
    setPalette(QPalette(kColorAppBG));

    emptyState_->setVisible(false);
    auto* middle = new QVBoxLayout;
    middle->addStretch();
    middle->addWidget(recordingPanel_, 0, Qt::AlignHCenter);
    middle->addStretch();
    middle->addWidget(emptyState_, 0, Qt::AlignHCenter);
    middle->addSpacing(kEmptyStateMargin);

    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addWidget(dayList_);
    row->addLayout(middle, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(row, 1);
    column->addWidget(statusBar_);
}

}  // namespace sonavault
