// One whole recolouring of a text, for each family of languages: the reset, all rules, the runs and their handing over
// to the text storage. The texts are made of the lines of the test corpora; the second number is the length in UTF-16
// units.
#include "editor/highlighter/syntax_highlighter.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <random>

using namespace kelm;

namespace {

struct Corpus
{
    const char* name;
    const char* file;
    Language language;
};

constexpr Corpus corpora[] = {
    {"Swift", "swift.swift", Language::swift},
    {"Python", "python.py", Language::python},
    {"JavaScript", "javascript.js", Language::javascript},
    {"JSON", "json.json", Language::json},
    {"XML", "xml.xml", Language::xml},
    {"CSS", "css.css", Language::css},
    {"Markdown", "markdown.md", Language::markdown},
    {"Shell", "shell.sh", Language::shell},
    {"Go", "go.go", Language::go},
    {"Rust", "rust.rs", Language::rust},
    {"Generic", "generic.c", Language::c},
};

/// The lines of a corpus in random order, `length` units of them: in a text that came round again and again the
/// processor would learn the branches by heart.
QString sourceOf(const Corpus& corpus, qsizetype length)
{
    QFile file(QStringLiteral(KELM_SOURCE_ROOT "/tests/editor/highlighter/data/") + QString::fromLatin1(corpus.file));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", corpus.file);
        std::exit(1);
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    std::mt19937 random(1);
    std::uniform_int_distribution<qsizetype> anyLine(0, lines.size() - 1);
    QString source;
    while (source.size() < length) {
        source += lines[anyLine(random)] + u'\n';
    }
    source.truncate(length);
    return source;
}

void recolour(benchmark::State& state, const Corpus& corpus)
{
    const auto length = static_cast<qsizetype>(state.range(0));
    TextStorage storage;
    storage.setText(sourceOf(corpus, length));
    const SyntaxHighlighter highlighter(EditorTheme::monokai());
    for (auto _ : state) {
        highlighter.highlight(&storage, corpus.language);
        benchmark::DoNotOptimize(storage.foreground());
    }
    state.SetItemsProcessed(state.iterations() * length);
}

} // namespace

int main(int argc, char** argv)
{
    for (const Corpus& corpus : corpora) {
        benchmark::RegisterBenchmark(corpus.name, [&corpus](benchmark::State& state) { recolour(state, corpus); })
            ->Arg(1'000'000)
            ->Arg(10'000'000)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
