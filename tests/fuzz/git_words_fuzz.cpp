// Any words of git that has failed, behind a line with its command, and any references: the reason fits a line, and a
// name that is checked out is one that git has told of.
#include "fuzz/require.h"
#include "git/service/checkout_target.h"
#include "git/service/git_failure.h"

#include <algorithm>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace kelm;

    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString first = input.section(u'\n', 0, 0);
    const QString words = input.section(u'\n', 1);
    const GitFailure failure{.command = first.split(u' '), .text = words};
    const QString sentence = failure.sentence();
    require(sentence.size() <= GitFailure::mostSentenceUnits && !sentence.contains(u'\n'));
    require(!words.trimmed().isEmpty() || sentence.isEmpty());
    failure.hasMore();
    failure.isAboutConflicts();

    const CheckoutTarget target(first);
    const std::optional<QString> name = target.nameIn(words);
    if (name) {
        require(!name->isEmpty() && first.endsWith(*name));
        const QStringList references = words.split(u'\n');
        require(std::any_of(references.begin(), references.end(),
                            [&name](const QString& reference) { return reference.endsWith(*name); }));
    }
    require(!target.isLocalIn(words) || name.has_value());
    return 0;
}
