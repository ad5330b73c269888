#include "learning/end_of_input.h"

#include "platform/text/regular_expression.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

const std::vector<EndOfInputPattern>& endOfInputPatterns()
{
    static const std::vector<EndOfInputPattern> patterns{
        {u"Python"_s, uR"(^EOFError: EOF when reading)"_s},
        // A question that is asked when the input has ended.
        {u"JavaScript"_s, uR"(ERR_USE_AFTER_CLOSE.*readline|readline was closed)"_s},
        {u"Ruby"_s, uR"(end of file reached \(EOFError\))"_s},
        // "gets" gives nothing at the end; the line of the complaint stands below it.
        {u"Ruby"_s, uR"(undefined method .\w+[!?]?' for nil\b[^\n]*\(NoMethodError\)\s+[^\n]*\b(gets|readline)\b)"_s},
        {u"Go"_s, uR"(^panic: EOF$|^(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d )EOF$)"_s},
        {u"Swift"_s, uR"(Unexpectedly found nil while unwrapping[\s\S]*\breadLine\()"_s},
        {u"Java"_s, uR"(java\.util\.NoSuchElementException(: No line found)?\s+at [^\n]*java\.util\.Scanner\.)"_s},
        {u"Haskell"_s, uR"((getLine|hGetLine|getChar|getContents): end of file)"_s},
    };
    return patterns;
}

bool tellsOfEndOfInput(QStringView standardError)
{
    static const std::vector<RegularExpression> expressions = [] {
        std::vector<RegularExpression> compiled;
        for (const EndOfInputPattern& each : endOfInputPatterns()) {
            if (auto expression = RegularExpression::compile(u"(?m)"_s + each.pattern)) {
                compiled.push_back(*expression);
            }
        }
        return compiled;
    }();
    const QStringView end = standardError.last(std::min(standardError.size(), longestEndOfInputLook));
    return std::any_of(expressions.begin(), expressions.end(),
                       [end](const RegularExpression& each) { return each.firstMatch(end).has_value(); });
}

} // namespace kelm
