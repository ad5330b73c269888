// A document in an editor on screen.
#pragma once

#include "app/document/document.h"
#include "editor/themes/theme_manager.h"
#include "editor/view/editor_container_view.h"
#include "editor/view/kelm_editor_view.h"
#include "platform/events/notification_center.h"
#include "platform/events/scheduler.h"
#include "platform/files/user_defaults.h"
#include "support/captured_log.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace kelm::test {

/// A document of one language in a window of its own, with everything around it faked.
struct ShownDocument
{
    QTemporaryDir home;
    UserDefaults defaults{home.filePath(QStringLiteral("defaults.conf"))};
    CapturedLog log;
    ThemeManager themes{{defaults, log, home.path(), [](Appearance) {}}};
    ManualScheduler time;
    NotificationCenter notifications;
    std::shared_ptr<Document> document;
    std::unique_ptr<KelmEditorView> binding;
    std::unique_ptr<EditorContainerView> view;

    ShownDocument(const QString& text, Language language, QSize size)
        : document(std::make_shared<Document>(text, std::nullopt, language, std::nullopt)),
          binding(std::make_unique<KelmEditorView>(document, themes)),
          view(binding->makeView(time, notifications, nullptr))
    {
        view->resize(size);
        view->show();
        if (!QTest::qWaitForWindowActive(view.get())) {
            qFatal("the window does not come up");
        }
    }

    TextView& textView() const { return view->textView(); }
    CodeFoldingManager& folds() const { return view->codeFoldingManager(); }
};

} // namespace kelm::test
