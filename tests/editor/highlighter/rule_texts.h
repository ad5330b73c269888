// Random texts rich in what the highlighter's rules look at.
#pragma once

#include "editor/highlighter/rule_lists.h"
#include "support/random_text.h"

#include <QString>

#include <vector>

namespace kelm::test {

/// All lists of rules, each with a name.
struct NamedRules
{
    const char* name;
    RuleList rules;
};
const std::vector<NamedRules>& allRuleLists();

/// One small piece: quotes, marks of comments, brackets, digits, words, line ends, what boundaries of words look
/// through, halves of characters.
QString rulePiece(RandomText& random);
/// `count` pieces, few different ones among them, so that openers meet closers.
QString ruleText(RandomText& random, qsizetype count);

/// The sources in a folder one behind the other, again and again, up to `length` units.
QString longSource(const QString& folder, qsizetype length);

} // namespace kelm::test
