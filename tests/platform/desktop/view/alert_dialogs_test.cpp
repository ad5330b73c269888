#include "platform/desktop/view/alert_dialogs.h"
#include "support/test_program.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QtTest>

namespace alert_dialogs_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

using Answer = std::optional<int>;

const Alert question{.message = u"Move <b>it</b>?"_s,
                     .informativeText = u"It goes."_s,
                     .buttons = {u"Cancel"_s, u"Keep Data"_s, u"Remove All"_s}};

/// Shows the alert, lets `act` answer it as a person does, and tells what came of it.
Answer answered(const std::function<void(QMessageBox& box)>& act)
{
    QTimer::singleShot(0, qApp, [act] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !QTest::qWaitForWindowActive(box)) {
            qFatal("no alert");
        }
        act(*box);
    });
    return AlertDialogs().runWarning(question);
}

} // namespace

class AlertDialogsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAlertShowsItsTextsAndButtons();
    void keysPressTheFirstButton_data();
    void keysPressTheFirstButton();
    void returnIsTheFirstButtonWhateverHasTheFocus_data() { keysPressTheFirstButton_data(); }
    void returnIsTheFirstButtonWhateverHasTheFocus();
    void spacePressesWhatHasTheFocus();
    void eachButtonIsAnAnswer();
    void closingPressesTheFirstButton();
};

void AlertDialogsTest::anAlertShowsItsTextsAndButtons()
{
    answered([](QMessageBox& box) {
        QCOMPARE(box.text(), question.message);
        QCOMPARE(box.textFormat(), Qt::PlainText);
        QCOMPARE(box.informativeText(), question.informativeText);
        QCOMPARE(box.icon(), QMessageBox::Warning);
        QStringList texts;
        for (const QAbstractButton* button : box.buttons()) {
            texts.append(button->text());
        }
        texts.sort();
        QStringList expected = question.buttons;
        expected.sort();
        QCOMPARE(texts, expected);
        box.reject();
    });
}

void AlertDialogsTest::keysPressTheFirstButton_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
    QTest::newRow("Escape") << Qt::Key_Escape;
}

void AlertDialogsTest::keysPressTheFirstButton()
{
    QFETCH(Qt::Key, key);
    QCOMPARE(answered([key](QMessageBox& box) { QTest::keyClick(&box, key); }), Answer(0));
}

void AlertDialogsTest::returnIsTheFirstButtonWhateverHasTheFocus()
{
    QFETCH(Qt::Key, key);
    for (int tabs = 0; tabs < 4; ++tabs) {
        const Answer answer = answered([key, tabs](QMessageBox& box) {
            for (int i = 0; i < tabs; ++i) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            }
            QVERIFY(box.isAncestorOf(QApplication::focusWidget()));
            QTest::keyClick(QApplication::focusWidget(), key);
        });
        QCOMPARE(answer, Answer(0));
    }
}

void AlertDialogsTest::spacePressesWhatHasTheFocus()
{
    QSet<int> answers;
    for (int tabs = 0; tabs < 3; ++tabs) {
        qsizetype focused = -1;
        const Answer answer = answered([tabs, &focused](QMessageBox&) {
            for (int i = 0; i < tabs; ++i) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            }
            const auto* button = qobject_cast<QAbstractButton*>(QApplication::focusWidget());
            QVERIFY(button != nullptr);
            focused = question.buttons.indexOf(button->text());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        });
        QCOMPARE(answer, Answer(int(focused)));
        answers.insert(*answer);
    }
    QCOMPARE(answers.size(), 3);
}

void AlertDialogsTest::eachButtonIsAnAnswer()
{
    for (int index = 0; index < question.buttons.size(); ++index) {
        const QString& text = question.buttons[index];
        const Answer answer = answered([text](QMessageBox& box) {
            for (QAbstractButton* button : box.buttons()) {
                if (button->text() == text) {
                    QTest::mouseClick(button, Qt::LeftButton);
                    return;
                }
            }
        });
        QCOMPARE(answer, Answer(index));
    }
}

void AlertDialogsTest::closingPressesTheFirstButton()
{
    QCOMPARE(answered([](QMessageBox& box) { box.close(); }), Answer(0));
}

const kelm::test::Registered<AlertDialogsTest> registered(kelm::test::Toolkit::widgets);

} // namespace alert_dialogs_test

#include "alert_dialogs_test.moc"
