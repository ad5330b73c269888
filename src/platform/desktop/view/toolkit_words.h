// The words of the toolkit's own dialogs in the person's language.
#pragma once

#include <QTranslator>

class QCoreApplication;
class QLocale;

namespace kelm {

/// Translates what the toolkit's file dialog and its standard buttons say, which a desktop of its own would show in the
/// person's language, too. Nothing else of the toolkit: the texts of this program are English and are read from left to
/// right, and a menu or a window that is half of each would be worse than one that is all English.
class ToolkitWords final : public QTranslator
{
    Q_OBJECT

public:
    using QTranslator::QTranslator;

    QString translate(const char* context, const char* text, const char* comment, int count) const override;
};

/// Lets the application use the words of a locale. False where they are not installed, or where none are needed; all
/// stays English then.
bool installToolkitWords(QCoreApplication& application, const QLocale& locale);

/// The direction in which the toolkit's own dialogs are to be laid out: that of the words they have.
Qt::LayoutDirection directionOfToolkitWords();

} // namespace kelm
