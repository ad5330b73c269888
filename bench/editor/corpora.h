// The texts of the highlighter's benchmarks.
#pragma once

#include "app/language/language.h"

#include <QFile>
#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <random>

namespace kelm {

struct Corpus
{
    const char* name;
    const char* file;
    Language language;
};

inline constexpr Corpus corpora[] = {
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
inline QString sourceOf(const Corpus& corpus, qsizetype length)
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

} // namespace kelm
