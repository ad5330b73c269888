#include "git/panel/view/tags_tab.h"

#include "git/panel/view/tag_row.h"
#include "git/service/git_service.h"
#include "platform/view/panel_controls.h"
#include "platform/view/row_list.h"

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int rowHeight = 42;

} // namespace

TagsTab::TagsTab(GitService& git, QWidget* parent)
    : PanelTab(parent),
      git_(git),
      tagName_(makePanelField(tr("Tag name (e.g. v1.0)"), this)),
      tagMessage_(makePanelField(tr("Annotation (optional)"), this)),
      createButton_(makePanelButton(tr("Create"), this)),
      list_(new RowList(rowHeight, this))
{
    createButton_->setEnabled(false);
    connect(tagName_, &QLineEdit::textChanged, createButton_,
            [this](const QString& text) { createButton_->setEnabled(!text.isEmpty()); });
    connect(createButton_, &QAbstractButton::clicked, this, &TagsTab::create);
    for (QLineEdit* field : {tagName_, tagMessage_}) {
        connect(field, &QLineEdit::returnPressed, createButton_, [this] { createButton_->click(); });
    }
    list_->setAccessibleName(tr("Tags"));
    list_->setPlaceholder(tr("No tags"));
    arrange({tagName_, besideButton(tagMessage_, createButton_)}, list_);
    connect(&git_, &GitService::tagsChanged, this, &TagsTab::refresh);
}

void TagsTab::refreshState()
{
    const QList<GitTag> tags = git_.tags();
    list_->setSections({{.title = {},
                         .count = tags.size(),
                         .row =
                             [this, tags](qsizetype i) {
                                 const QString& name = tags[i].name;
                                 return TagRow{.tag = tags[i],
                                               .onPush = [this, name] { git_.pushTag(name, u"origin"_s); },
                                               .onDelete = [this, name] { git_.deleteTag(name); }}
                                     .content();
                             },
                         .key = [tags](qsizetype i) { return tags[i].name; }}});
}

void TagsTab::create()
{
    const QString message = tagMessage_->text();
    git_.createTag(tagName_->text(), message.isEmpty() ? std::nullopt : std::optional(message));
    tagName_->clear();
    tagMessage_->clear();
}

} // namespace kelm
