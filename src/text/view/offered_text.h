// A text that other programs may ask for.
#pragma once

#include "text/editing/selected_text.h"

#include <QMimeData>

#include <memory>

namespace kelm {

/// Gives a selected text as plain text, several a line each, and makes it only when somebody asks for it: then, and
/// then alone, it costs what its length costs. Main thread only.
class OfferedText final : public QMimeData
{
    Q_OBJECT

public:
    /// What `selected` holds when it is asked for counts.
    explicit OfferedText(std::shared_ptr<const SelectedText> selected) : selected_(std::move(selected)) {}

    QStringList formats() const override;
    bool hasFormat(const QString& format) const override;

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    std::shared_ptr<const SelectedText> selected_;
};

} // namespace kelm
