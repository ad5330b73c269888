#include "workbench/document_strip.h"

#include <QSignalBlocker>

namespace kelm {

DocumentStrip::DocumentStrip(AppState& appState, ThemeManager& themeManager, QWidget* parent)
    : QTabBar(parent), appState_(appState), themeManager_(themeManager)
{
    setDocumentMode(true);
    setDrawBase(false);
    setExpanding(false);
    setTabsClosable(true);
    setElideMode(Qt::ElideMiddle);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(tr("Open documents"));
    connect(&appState_, &AppState::documentsChanged, this, &DocumentStrip::takeDocuments);
    connect(&appState_, &AppState::currentDocumentIndexChanged, this, &DocumentStrip::takeCurrentIndex);
    connect(this, &QTabBar::currentChanged, this, [this](int index) { appState_.setCurrentDocumentIndex(index); });
    connect(this, &QTabBar::tabCloseRequested, this, [this](int index) { appState_.closeTab(index); });
    connect(&themeManager_, &ThemeManager::currentThemeChanged, this, &DocumentStrip::takeThemeBackground);
    takeThemeBackground();
    takeDocuments();
}

void DocumentStrip::takeDocuments()
{
    const QSignalBlocker blocker(this);
    for (const QMetaObject::Connection& connection : titleConnections_) {
        disconnect(connection);
    }
    titleConnections_.clear();
    while (count() > appState_.documents().size()) {
        removeTab(count() - 1);
    }
    int index = 0;
    for (const std::shared_ptr<Document>& document : appState_.documents()) {
        if (index == count()) {
            addTab({});
        }
        showTitle(index, *document);
        const Document* observed = document.get();
        titleConnections_.push_back(
            connect(observed, &Document::titleChanged, this, [this, observed] { takeTitle(observed); }));
        ++index;
    }
    takeCurrentIndex();
    setVisible(count() > 0);
}

void DocumentStrip::takeCurrentIndex()
{
    const QSignalBlocker blocker(this);
    setCurrentIndex(static_cast<int>(appState_.currentDocumentIndex()));
}

void DocumentStrip::takeTitle(const Document* document)
{
    for (int index = 0; index < count(); ++index) {
        if (appState_.documents()[index].get() == document) {
            showTitle(index, *document);
        }
    }
}

void DocumentStrip::showTitle(int index, const Document& document)
{
    // An ampersand in a file's name is no mnemonic.
    setTabText(index, document.title().replace(u'&', QStringLiteral("&&")));
    setTabToolTip(index, document.fileURL() ? document.fileURL()->toLocalFile() : QString());
}

void DocumentStrip::takeThemeBackground()
{
    QPalette colors;
    colors.setColor(QPalette::Base, themeManager_.currentTheme().backgroundColor.toColor());
    setPalette(colors);
}

} // namespace kelm
