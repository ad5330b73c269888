#include "workbench/view/unsaved_text_row.h"

#include "platform/files/file_url.h"
#include "platform/files/native_path.h"
#include "platform/style/view/style.h"
#include "platform/style/view/tint.h"
#include "platform/text/shown_name.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"
#include "platform/view/plain_help.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int rowSymbolSize = 16;
constexpr int rowPadding = 6;
constexpr int rowSpacing = 8;
constexpr int rowLineGap = 2;

QString counted(qint64 count, const QString& unit)
{
    return u"%1 %2%3 ago"_s.arg(QString::number(count), unit, count == 1 ? QString() : u"s"_s);
}

QString placeOf(const CopyHeader& header)
{
    if (!header.url) {
        return u"Never saved"_s;
    }
    const QString folder = shownName(QFileInfo(filePath(*header.url)).path());
    return header.isReplaced ? u"Replaced by a save · "_s + folder : folder;
}

ButtonLook smallLook()
{
    ButtonLook look = borderedLook();
    look.textSize = style::typeSize::subheadline;
    look.padding = {8, 3, 8, 3};
    return look;
}

PlainButton* makeRowButton(const QString& text, const QString& title, QWidget* parent)
{
    auto* button = new PlainButton(smallLook(), parent);
    button->setText(text);
    // Several stand below each other.
    button->setAccessibleName(text + u' ' + title);
    return button;
}

} // namespace

QString ageText(qint64 time, qint64 now)
{
    constexpr qint64 minute = 60'000;
    constexpr qint64 hour = 60 * minute;
    constexpr qint64 day = 24 * hour;
    const qint64 age = now - time;
    if (age < minute) {
        return u"just now"_s;
    }
    if (age < hour) {
        return counted(age / minute, u"minute"_s);
    }
    return age < day ? counted(age / hour, u"hour"_s) : counted(age / day, u"day"_s);
}

UnsavedTextRow::UnsavedTextRow(const UnsavedText& text, qint64 now, QWidget* parent) : QWidget(parent), id_(text.id)
{
    const QString title = shownName(text.header.title());
    const QFont caption = style::interfaceFont(style::typeSize::caption);
    auto* symbol = new SymbolLabel(u"doc"_s, rowSymbolSize, Tint::secondary(), this);
    title_ = new TextLabel(title, style::interfaceFont(style::typeSize::body), Tint::primary(), this);
    title_->setElideMode(Qt::ElideMiddle);
    place_ = new TextLabel(ageText(text.header.time, now) + u" · "_s + placeOf(text.header), caption, Tint::secondary(),
                           this);
    words_ =
        new TextLabel(text.firstWords.isEmpty() ? u"No text"_s : text.firstWords, caption, Tint::secondary(), this);
    open_ = makeRowButton(u"Open"_s, title, this);
    delete_ = makeRowButton(u"Delete"_s, title, this);
    if (text.header.url) {
        setToolTip(plainHelp(shownName(filePath(*text.header.url))));
    }

    auto* lines = new QVBoxLayout;
    lines->setSpacing(rowLineGap);
    for (TextLabel* label : {title_, place_, words_}) {
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
        lines->addWidget(label);
    }
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(rowPadding, rowPadding, rowPadding, rowPadding);
    row->setSpacing(rowSpacing);
    row->addWidget(symbol);
    row->addLayout(lines, 1);
    row->addWidget(open_);
    row->addWidget(delete_);

    connect(open_, &PlainButton::clicked, this, [this] {
        go(u"Opened"_s);
        Q_EMIT opened();
    });
    connect(delete_, &PlainButton::clicked, this, [this] {
        go(u"Deleted"_s);
        Q_EMIT deleted();
    });
}

void UnsavedTextRow::setGone()
{
    go(u"No longer there"_s);
}

void UnsavedTextRow::go(const QString& reason)
{
    if (hasGone_) {
        return;
    }
    hasGone_ = true;
    // The height stays, so that nothing slides.
    setFixedHeight(height());
    if (open_->hasFocus() || delete_->hasFocus()) {
        // Else the next row's button would have the keyboard, and a key that is held would press it.
        setFocusPolicy(Qt::StrongFocus);
        setTabOrder(delete_, this);
        setFocus();
    }
    open_->hide();
    delete_->hide();
    title_->setTint(Tint::secondary());
    place_->setText(reason);
    words_->setText(QString());
}

QStringList UnsavedTextRow::lines() const
{
    return {title_->text(), place_->text(), words_->text()};
}

void UnsavedTextRow::paintEvent(QPaintEvent*)
{
    if (hasFocus()) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        style::drawFocusRing(painter, QRectF(rect()), style::radius::control, *this);
    }
}

void UnsavedTextRow::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    Q_EMIT left();
}

} // namespace kelm
