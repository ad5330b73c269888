#include "search/view/project_search_view.h"

#include "app/state/app_state.h"
#include "platform/style/view/style.h"
#include "platform/view/accessible_list.h"
#include "platform/view/activity_line.h"
#include "platform/view/labels.h"
#include "platform/view/plain_help.h"
#include "search/view/project_search_model.h"

#include <QLineEdit>
#include <QListView>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

ProjectSearchView::ProjectSearchView(AppState& appState, QWidget* parent)
    : QWidget(parent),
      appState_(appState),
      searchText_(new QLineEdit(this)),
      pages_(new QStackedWidget(this)),
      list_(new QListView(pages_)),
      model_(new ProjectSearchModel(search_, this)),
      tooLong_(new TextLabel({}, style::interfaceFont(style::typeSize::caption), Tint::secondary(), this))
{
    constexpr int padding = 12;
    searchText_->setPlaceholderText(u"Search in files"_s);
    searchText_->setAccessibleName(u"Search in files"_s);
    setFocusProxy(searchText_);
    auto* activity = new ActivityLine(this);

    list_->setModel(model_);
    setAccessibleItems(*list_, [this](int row) {
        const QModelIndex index = model_->index(row);
        return AccessibleItem{.name = index.data(Qt::AccessibleTextRole).toString(),
                              .press = [this, row] { open(row); }};
    });
    list_->setItemDelegate(new ProjectSearchDelegate(list_));
    list_->setUniformItemSizes(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setMouseTracking(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setAccessibleName(tr("Results"));
    list_->viewport()->setAutoFillBackground(false);
    auto* noResults =
        new TextLabel(u"No results"_s, style::interfaceFont(style::typeSize::body), Tint::secondary(), pages_);
    noResults->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    noResults->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    pages_->addWidget(noResults);
    pages_->addWidget(list_);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, padding, 0, 0);
    column->setSpacing(0);
    auto* field = new QHBoxLayout;
    field->setContentsMargins(padding, 0, padding, 0);
    field->addWidget(searchText_);
    column->addLayout(field);
    column->addSpacing(8);
    column->addWidget(activity);
    column->addSpacing(6);
    column->addWidget(pages_, 1);
    tooLong_->setAlignment(Qt::AlignHCenter);
    tooLong_->setContentsMargins(padding, 4, padding, 4);
    column->addWidget(tooLong_);

    connect(searchText_, &QLineEdit::returnPressed, this, &ProjectSearchView::performSearch);
    connect(list_, &QListView::clicked, this, [this](const QModelIndex& index) { open(index.row()); });
    connect(list_, &QListView::activated, this, [this](const QModelIndex& index) { open(index.row()); });
    connect(&search_, &ProjectSearch::resultsCleared, this, &ProjectSearchView::updatePage);
    connect(&search_, &ProjectSearch::resultsAdded, this, &ProjectSearchView::updatePage);
    connect(&search_, &ProjectSearch::tooLongFilesChanged, this, &ProjectSearchView::updateTooLong);
    connect(&search_, &ProjectSearch::isRunningChanged, activity,
            [this, activity] { activity->setActive(search_.isRunning()); });
    updatePage();
    updateTooLong();
}

void ProjectSearchView::performSearch()
{
    if (appState_.currentProject() && !searchText_->text().isEmpty()) {
        search_.start(*appState_.currentProject(), searchText_->text());
    }
}

void ProjectSearchView::open(int row)
{
    if (row >= 0 && row < results().size()) {
        appState_.openFile(results().at(row).fileURL);
    }
}

void ProjectSearchView::updateTooLong()
{
    const qsizetype count = search_.tooLongFiles();
    tooLong_->setText(count == 1 ? u"1 file was too long to search"_s
                                 : u"%1 files were too long to search"_s.arg(count));
    tooLong_->setToolTip(plainHelp(u"Files of over 1 GiB, and files with a line of over 32 MiB, are not searched."_s));
    tooLong_->setVisible(count > 0);
}

void ProjectSearchView::updatePage()
{
    pages_->setCurrentIndex(results().isEmpty() ? 0 : 1);
}

} // namespace kelm
