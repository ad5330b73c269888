// Texts with their carets and selections, written into them: "|" stands for a caret and "[" "]" for a selection.
#pragma once

#include "text/editing/selection.h"

#include <QString>

#include <vector>

namespace kelm::test {

struct MarkedText
{
    QString text;
    std::vector<Selection> selections;
};

inline MarkedText parseMarked(const QString& marked)
{
    MarkedText result;
    qsizetype start = -1;
    for (const QChar unit : marked) {
        if (unit == u'|') {
            result.selections.push_back(Selection::caret({result.text.size(), false}));
        } else if (unit == u'[') {
            start = result.text.size();
        } else if (unit == u']') {
            result.selections.push_back(Selection::over(TextRange::between(start, result.text.size())));
        } else {
            result.text += unit;
        }
    }
    return result;
}

inline QString describeMarked(const QString& text, const SelectionSet& selections)
{
    QString marked(text.constData(), text.size());
    const std::vector<Selection>& all = selections.all();
    for (auto selection = all.rbegin(); selection != all.rend(); ++selection) {
        if (selection->isCaret()) {
            marked.insert(selection->anchor, u'|');
        } else {
            marked.insert(selection->range().end(), u']');
            marked.insert(selection->range().location, u'[');
        }
    }
    return marked;
}

} // namespace kelm::test
