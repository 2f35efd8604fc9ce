#include "shell/KeyResponderView.h"

#include <QVBoxLayout>

#include "shell/Theme.h"

namespace sonavault {

KeyResponderView::KeyResponderView()
    : recordingPanel_(new RecordingPanel(this)), statusBar_(new StatusBarView(this)) {
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(kLeastContentSize);
    resize(kContentSize);
    setAutoFillBackground(true);
    setPalette(QPalette(kColorAppBG));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(recordingPanel_, 0, Qt::AlignHCenter);
    column->addStretch();
    column->addWidget(statusBar_);
}

}  // namespace sonavault
