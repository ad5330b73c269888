#include "platform/view/mnemonics.h"

namespace kelm {

QString withoutMnemonic(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

QString withoutMnemonicMarks(QStringView label)
{
    QString shown;
    for (qsizetype at = 0; at < label.size(); ++at) {
        if (label[at] == u'&' && at + 1 < label.size()) {
            ++at;
        }
        shown.append(label[at]);
    }
    return shown;
}

} // namespace kelm
