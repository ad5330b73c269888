// Changes of the case and the shape of a text's words.
#pragma once

#include <QString>
#include <QStringList>

namespace kelm {

/// All functions are pure. Case is mapped as Unicode maps it in full and without regard to a locale: "ß" becomes "SS"
/// in upper case, a final sigma its own form in lower case. Unpaired surrogates stay as they are.
struct TextTransformer
{
    TextTransformer() = delete;

    static QString toUpperCase(const QString& text);
    static QString toLowerCase(const QString& text);
    /// Every letter in lower case whose nearest character before it that is not Case_Ignorable is a cased one, all
    /// others in title case: "foo_bar don't" gives "Foo_Bar Don't".
    static QString toCapitalized(const QString& text);

    /// The first word in lower case, followed by the others capitalised, with nothing between them. A text without
    /// words comes back as it is.
    static QString toCamelCase(const QString& text);
    /// The words in lower case with "_" between them.
    static QString toSnakeCase(const QString& text);

    /// The words of a text: they end at blanks, tabs, other space separators, "_" and "-", and between a letter of a to
    /// z and one of A to Z. Line ends are parts of words.
    static QStringList splitIntoWords(const QString& text);

    /// The lines in the order of the user's locale, letter case ignored; equal ones keep their order, also when
    /// descending. Each newline character ends a line, so that a CRLF pair leaves an empty one; one line feed joins the
    /// lines again. The empty line behind a last newline sorts as any other.
    static QString sortLines(const QString& text, bool ascending);
};

} // namespace kelm
