// Reads the tags of a text.
#pragma once

#include <QStringView>

namespace kelm {

/// The tags of a text, or of a part of one that begins at the start of a line, from first to last.
///
/// Opening tags are the matches of `<([a-zA-Z][a-zA-Z0-9]*)\b[^>]*>`, closing ones of `</([a-zA-Z][a-zA-Z0-9]*)>`, each
/// pattern matched over the whole text for itself. Lines end at line feeds alone.
///
/// An opening tag without its ">" is told like the others, since that may stand in a part behind. If it stands nowhere,
/// nothing behind is a tag either, and the opening finds no closing.
class TagReader
{
public:
    struct Tag
    {
        QStringView name;
        /// The line feeds before it.
        qsizetype line = 0;
        bool isOpening = false;
    };

    /// `startsInTag` says that an opening tag before the text goes on up to the first ">" in it.
    explicit TagReader(QStringView text, bool startsInTag = false);

    /// Reads the next tag, if there is one.
    bool next(Tag& tag);

    /// When all is read: the line feeds in the text.
    qsizetype lineFeeds() const { return line_; }
    /// When all is read: whether an opening tag goes on behind the text.
    bool endsInTag() const { return openingFrom_ > text_.size(); }

private:
    bool readOpening(Tag& tag);
    bool readClosing(Tag& tag);
    qsizetype nameEnd(qsizetype start) const;
    /// Lets the matching of opening tags go on behind the next ">" at or behind `offset`.
    void passOpening(qsizetype offset);

    QStringView text_;
    const char16_t* units_;
    qsizetype at_ = 0;
    qsizetype line_ = 0;
    /// Where matching of opening tags goes on: behind the last one; behind the text's size where that has no end in it.
    qsizetype openingFrom_ = 0;
};

} // namespace kelm
