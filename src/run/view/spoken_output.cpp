#include "run/view/spoken_output.h"

#include "platform/view/accessible_news.h"
#include "platform/view/accessible_role.h"
#include "platform/view/screen_reader.h"
#include "text/view/text_view.h"

#include <algorithm>
#include <utility>

namespace kelm {

using namespace Qt::Literals::StringLiterals;

SpokenOutput::SpokenOutput(TextView& text, QWidget* parent) : QWidget(parent), text_(text)
{
    setFixedSize(0, 0);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleRole(*this, QAccessible::Notification);
    setAccessibleName(tr("Output"));
    quiet_.setSingleShot(true);
    quiet_.setInterval(pause);
    connect(&quiet_, &QTimer::timeout, this, &SpokenOutput::say);
    connect(&text.storage(), &TextStorage::edited, this, &SpokenOutput::hear);
}

void SpokenOutput::hear(const TextEdit& edit)
{
    const TextRange news = edit.newRange();
    if (!screenReader::isListening() || news.length == 0 || news.end() != text_.storage().length()) {
        return;
    }
    // A text that was set anew is a text of its own.
    if (edit.range.location == 0) {
        waiting_.clear();
        isCut_ = false;
    }
    const qsizetype heard = std::min(news.length, mostUnits);
    waiting_ += text_.storage().substring({news.end() - heard, heard});
    isCut_ = isCut_ || heard < news.length || waiting_.size() > mostUnits;
    waiting_ = waiting_.right(mostUnits);
    quiet_.start();
}

void SpokenOutput::say()
{
    const QString text = std::exchange(waiting_, {}).trimmed();
    const bool isCut = std::exchange(isCut_, false);
    if (!text.isEmpty()) {
        setAccessibleName(isCut ? u"… "_s + text : text);
        announce(*this);
    }
}

} // namespace kelm
