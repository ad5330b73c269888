// A view of the search, shown over an application state of its own.
#pragma once

#include "platform/view/plain_button.h"
#include "support/app_state_fixture.h"

#include <QLineEdit>
#include <QListWidget>
#include <QtTest>

namespace kelm::test {

/// A search view on a screen of its own, found by its prompts and names.
struct SearchViewFixture : AppStateFixture
{
    std::unique_ptr<QWidget> view;

    template <typename View, typename... Arguments>
    View& show(Arguments&... arguments)
    {
        auto made = std::make_unique<View>(state, arguments...);
        View& shown = *made;
        view = std::move(made);
        view->show();
        if (!QTest::qWaitForWindowActive(view.get())) {
            qFatal("no window");
        }
        view->setFocus();
        return shown;
    }
    QLineEdit& field(const QString& prompt) const
    {
        for (auto* field : view->findChildren<QLineEdit*>()) {
            if (field->placeholderText() == prompt) {
                return *field;
            }
        }
        qFatal("no field");
    }
    PlainButton* button(const QString& name) const
    {
        for (auto* button : view->findChildren<PlainButton*>()) {
            if (button->isVisible() && (button->text() == name || button->accessibleName() == name)) {
                return button;
            }
        }
        return nullptr;
    }
    bool shows(const QString& text) const
    {
        for (auto* widget : view->findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->accessibleName() == text) {
                return true;
            }
        }
        return false;
    }
    /// The rows of the list that have another ground than the list has.
    QList<int> markedRows() const
    {
        auto& list = *view->findChild<QListWidget*>();
        const QImage picture = view->grab().toImage();
        const QColor plain = picture.pixelColor(view->contentsRect().left() + 2, list.geometry().center().y());
        QList<int> marked;
        for (int row = 0; row < list.count(); ++row) {
            const QPoint place = list.visualItemRect(list.item(row)).center() + QPoint(200, 0);
            if (picture.pixelColor(list.viewport()->mapTo(view.get(), place)) != plain) {
                marked.append(row);
            }
        }
        return marked;
    }
    void setRecentFiles(int count)
    {
        QList<QUrl> files;
        for (int file = 0; file < count; ++file) {
            files.append(write(QStringLiteral("file %1.txt").arg(file), "text"));
        }
        state.setRecentFiles(files);
    }
};

} // namespace kelm::test
