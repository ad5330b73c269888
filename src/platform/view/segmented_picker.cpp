#include "platform/view/segmented_picker.h"

#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/view/accessible_role.h"
#include "platform/view/focus_ring.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

namespace kelm {

namespace {

constexpr int pickerHeight = 24;
constexpr int inset = 2;
constexpr int segmentPadding = 6;
constexpr int textSize = 12;
constexpr qreal cornerRadius = style::radius::control;

class Segment final : public QRadioButton
{
public:
    Segment(const QString& label, QWidget* parent) : QRadioButton(label, parent)
    {
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

    QSize sizeHint() const override
    {
        return {fontMetrics().horizontalAdvance(text()) + 2 * segmentPadding, pickerHeight - 2 * inset};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& point) const override { return rect().contains(point); }

    void paintEvent(QPaintEvent*) override
    {
        const bool isDark = style::appearanceOf(*this) == Appearance::dark;
        const QRectF box(rect());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        if (isChecked()) {
            // A raised ground over a faint shadow.
            painter.setBrush(QColor(0, 0, 0, isDark ? 60 : 36));
            painter.drawRoundedRect(box.adjusted(0, 1, 0, 0), cornerRadius - inset, cornerRadius - inset);
            painter.setBrush(isDark ? QColor(99, 99, 103) : QColor(Qt::white));
            painter.drawRoundedRect(box.adjusted(0, 0, 0, -1), cornerRadius - inset, cornerRadius - inset);
        } else if (underMouse() || isDown()) {
            painter.setBrush(Tint::primary().at(isDown() ? style::pressedOpacity : style::hoverOpacity).on(*this));
            painter.drawRoundedRect(box, cornerRadius - inset, cornerRadius - inset);
        }
        painter.setFont(style::interfaceFont(textSize, isChecked() ? QFont::Medium : QFont::Normal));
        painter.setPen(Tint::primary().on(*this));
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
        if (focusSign_.isShown()) {
            style::drawFocusRing(painter, box, cornerRadius - inset, *this);
        }
    }

    void focusInEvent(QFocusEvent* event) override
    {
        focusSign_.follow(*event);
        QRadioButton::focusInEvent(event);
    }

    void focusOutEvent(QFocusEvent* event) override
    {
        focusSign_.follow(*event);
        QRadioButton::focusOutEvent(event);
    }

private:
    FocusSign focusSign_;
};

} // namespace

SegmentedPicker::SegmentedPicker(const QStringList& labels, const QString& name, QWidget* parent) : QWidget(parent)
{
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(name);
    setFixedHeight(pickerHeight);
    setFont(style::interfaceFont(textSize));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(inset);
    for (const QString& label : labels) {
        const int index = static_cast<int>(segments_.size());
        auto* segment = new Segment(label, this);
        segment->setChecked(index == 0);
        connect(segment, &QRadioButton::toggled, this, [this, index](bool isChecked) {
            if (isChecked) {
                Q_EMIT selectionChanged(index);
            }
        });
        row->addWidget(segment, 1);
        segments_.append(segment);
    }
}

int SegmentedPicker::selectedIndex() const
{
    for (int index = 0; index < segments_.size(); ++index) {
        if (segments_[index]->isChecked()) {
            return index;
        }
    }
    return -1;
}

void SegmentedPicker::setSelectedIndex(int index)
{
    segments_[index]->setChecked(true);
}

void SegmentedPicker::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Tint::primary().at(style::hoverOpacity).on(*this));
    painter.drawRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
}

} // namespace kelm
