#pragma once

#include <QWidget>
#include <string>

namespace sonavault {

/// An unseen view over one tab. It bears the tab's hover text and is the tab to a screen reader;
/// the mouse goes through it.
///
/// Thread: main.
class SVTabHotspotView final : public QWidget {
  public:
    /// `id` is the tab's.
    SVTabHotspotView(std::string id, QWidget* parent) : QWidget(parent), id_(std::move(id)) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

    const std::string& id() const { return id_; }

  private:
    std::string id_;
};

}  // namespace sonavault
