#include "platform/files/standard_paths.h"
#include "run/snippet_copies.h"
#include "support/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <iostream>

namespace snippet_copies_test {

using namespace kelm;
using namespace Qt::Literals::StringLiterals;

namespace {

QDir notes()
{
    return QDir(standardPaths::savedState() + u"/snippets"_s);
}

QString make(const QString& code = u"print(1)"_s)
{
    const auto made = makeSnippetCopy(code, Language::python);
    return std::holds_alternative<QString>(made) ? std::get<QString>(made) : QString();
}

/// Writes two copies, tells their paths, and waits to be killed.
int keepCopies(const QStringList& /*arguments*/)
{
    std::cout << qPrintable(make()) << '\n' << qPrintable(make()) << std::endl;
    std::cin.get();
    return 0;
}

struct OtherProgram
{
    OtherProgram()
    {
        process.start(QCoreApplication::applicationFilePath(), {u"--role"_s, u"keep copies"_s});
        while (paths.size() < 2 && process.waitForReadyRead()) {
            while (process.canReadLine()) {
                paths.append(QString::fromLocal8Bit(process.readLine()).trimmed());
            }
        }
    }
    void kill()
    {
        process.kill();
        process.waitForFinished();
    }

    QProcess process;
    QStringList paths;
};

} // namespace

class SnippetCopiesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aCopyHoldsTheCodeForItsOwnerAlone();
    void aCopyGoesWithItsNote();
    void allGoAtTheEnd();
    void thoseOfAProgramThatWasKilledGo();
    void thoseOfAProgramThatRunsStay();
    void nothingElseIsRemoved();
    void withoutASavedStateThereIsStillACopy();

private:
    std::unique_ptr<QTemporaryDir> folder_;
};

void SnippetCopiesTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    qputenv("XDG_STATE_HOME", QFile::encodeName(folder_->filePath(u"state"_s)));
    qputenv("TMPDIR", QFile::encodeName(folder_->path()));
    QVERIFY(standardPaths::savedState().startsWith(folder_->path()));
}

void SnippetCopiesTest::aCopyHoldsTheCodeForItsOwnerAlone()
{
    const QString path = make(u"print('한 글')\n"_s);
    QVERIFY(QFileInfo(path).fileName().startsWith(u"temp_"_s) && path.endsWith(u".py"_s));
    QCOMPARE(QFileInfo(path).path(), folder_->path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("print('한 글')\n"));
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QVERIFY(!(file.permissions() & others));
    QVERIFY(!(QFileInfo(notes().path()).permissions() & others));
    removeSnippetCopy(path);
}

void SnippetCopiesTest::aCopyGoesWithItsNote()
{
    const QString path = make();
    QCOMPARE(notes().entryList(QDir::Files), QStringList{QFileInfo(path).fileName()});
    removeSnippetCopy(path);
    QVERIFY(!QFileInfo::exists(path));
    QVERIFY(notes().isEmpty());
}

void SnippetCopiesTest::allGoAtTheEnd()
{
    const QStringList paths{make(), make(), make()};
    removeSnippetCopy(paths[1]);
    removeSnippetCopies();
    for (const QString& path : paths) {
        QVERIFY(!path.isEmpty() && !QFileInfo::exists(path));
    }
    QVERIFY(notes().isEmpty());
}

void SnippetCopiesTest::thoseOfAProgramThatWasKilledGo()
{
    OtherProgram other;
    QCOMPARE(other.paths.size(), qsizetype(2));
    const QString own = make();
    other.kill();
    QVERIFY(QFileInfo::exists(other.paths[0]) && QFileInfo::exists(other.paths[1]));
    removeAbandonedSnippetCopies();
    QVERIFY(!QFileInfo::exists(other.paths[0]) && !QFileInfo::exists(other.paths[1]));
    QVERIFY(QFileInfo::exists(own));
    removeSnippetCopy(own);
    QVERIFY(notes().isEmpty());
}

void SnippetCopiesTest::thoseOfAProgramThatRunsStay()
{
    OtherProgram other;
    QCOMPARE(other.paths.size(), qsizetype(2));
    removeAbandonedSnippetCopies();
    QVERIFY(QFileInfo::exists(other.paths[0]) && QFileInfo::exists(other.paths[1]));
    other.kill();
}

void SnippetCopiesTest::nothingElseIsRemoved()
{
    removeSnippetCopy(make());
    const QString kept = folder_->filePath(u"temp_kept.py"_s);
    const auto write = [](const QString& path, const QString& text) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    };
    write(kept, u"mine"_s);
    write(notes().filePath(u"temp_other.py"_s), kept);
    write(notes().filePath(u"temp_empty.py"_s), QString());
    QVERIFY(QFile::link(kept, folder_->filePath(u"temp_link.py"_s)));
    write(notes().filePath(u"temp_link.py"_s), folder_->filePath(u"temp_link.py"_s));
    removeAbandonedSnippetCopies();
    QVERIFY(QFileInfo::exists(kept));
    QVERIFY(QFileInfo(folder_->filePath(u"temp_link.py"_s)).isSymLink());
    QVERIFY(notes().isEmpty());
}

void SnippetCopiesTest::withoutASavedStateThereIsStillACopy()
{
    qputenv("XDG_STATE_HOME", "/dev/null/nowhere");
    const QString path = make();
    QVERIFY(QFileInfo::exists(path));
    removeAbandonedSnippetCopies();
    removeSnippetCopies();
    QVERIFY(!QFileInfo::exists(path));
}

const kelm::test::Registered<SnippetCopiesTest> registered(kelm::test::Toolkit::core, {{u"keep copies"_s, keepCopies}});

} // namespace snippet_copies_test

#include "snippet_copies_test.moc"
