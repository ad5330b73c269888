// Input methods: text that is composed before it is put in.
#pragma once

#include <Qt>

class QInputMethodEvent;
class QVariant;

namespace kelm {

class TextView;

/// Keeps what is being composed in the layout, where it is seen but is no part of the text: nothing of it is saved,
/// coloured or undone until it is committed. A whole composition is one undo step.
class TextViewInputMethod
{
public:
    explicit TextViewInputMethod(TextView& view) : view_(view) {}

    void handle(QInputMethodEvent* event);
    /// Puts the composition into the text as it stands and ends it.
    void commit();
    QVariant query(Qt::InputMethodQuery query) const;

private:
    void insertCommitted(const QInputMethodEvent& event);
    void showPreedit(const QInputMethodEvent& event);

    TextView& view_;
    bool isCommitting_ = false;
};

} // namespace kelm
