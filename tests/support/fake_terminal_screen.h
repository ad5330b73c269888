// A terminal's text surface that keeps what is written on it.
#pragma once

#include "run/terminal_screen.h"
#include "run/terminal_session.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace kelm::test {

class FakeTerminalScreen final : public QObject, public TerminalScreen
{
public:
    void appendText(const QString& piece, const QColor& color) override
    {
        add(piece, nameOf(color.rgba()));
        writes.append(nameOf(color.rgba()) + QStringLiteral(": ") + piece);
    }

    void appendOutput(const AttributedText& output) override
    {
        if (output.runs.size() == 1 && output.runs.front().color == TextColor(plainColors::red.rgba())) {
            appendText(output.text, plainColors::red);
            return;
        }
        QString line = QStringLiteral("output:");
        for (const AttributedRun& run : output.runs) {
            const QString piece = output.text.sliced(run.start, run.length);
            add(piece, nameOf(resolved(run.color, Appearance::dark)));
            line += u' ' + nameOf(resolved(run.color, Appearance::dark)) + u'=' + piece;
        }
        writes.append(line);
        outputLength += output.text.size();
        // It may put another in its place.
        if (const auto told = onOutput) {
            told();
        }
    }

    void appendPrompt() override
    {
        const QString directory = session != nullptr ? session->currentDirectory() : QStringLiteral("~");
        appendText(TerminalSession::promptText(directory), plainColors::cyan);
    }

    void clear() override
    {
        text.clear();
        writes.append(QStringLiteral("clear"));
    }

    /// Forgets what was written up to now.
    void forget()
    {
        text.clear();
        writes.clear();
        redText.clear();
        outputLength = 0;
    }

    QPointer<TerminalSession> session;
    /// Called at the end of each piece of output.
    std::function<void()> onOutput;

    /// All text on the screen.
    QString text;
    /// What was written in red.
    QString redText;
    /// One entry for each call: "cyan: \n/home $ ", "output: green=text", "clear".
    QStringList writes;
    qsizetype outputLength = 0;

private:
    static QString nameOf(QRgb color)
    {
        const std::pair<QRgb, const char*> names[] = {
            {plainColors::white.rgba(), "white"}, {plainColors::green.rgba(), "green"},
            {plainColors::cyan.rgba(), "cyan"},   {plainColors::red.rgba(), "red"},
            {plainColors::gray.rgba(), "gray"},   {plainColors::yellow.rgba(), "yellow"},
        };
        for (const auto& [value, name] : names) {
            if (value == color) {
                return QString::fromLatin1(name);
            }
        }
        return QColor(color).name();
    }

    void add(const QString& piece, const QString& color)
    {
        text += piece;
        if (color == QStringLiteral("red")) {
            redText += piece;
        }
    }
};

} // namespace kelm::test
