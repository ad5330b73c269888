#include "settings/view/setting_control.h"

#include "platform/style/view/style.h"
#include "platform/view/labels.h"
#include "platform/view/plain_button.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace kelm {

namespace {

constexpr int labelWidth = 160;
constexpr int sliderWidth = 200;
constexpr int pickerFontSize = 13;

} // namespace

SettingControl::SettingControl(const Setting& setting, UserDefaults& store, QWidget* parent)
    : QWidget(parent), setting_(setting), store_(store)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(10);
    switch (setting_.control) {
    case Setting::Control::toggle:
        addToggle();
        break;
    case Setting::Control::stepper:
        addStepper();
        break;
    case Setting::Control::slider:
        addSlider();
        break;
    case Setting::Control::picker:
        addPicker();
        break;
    }
    row->addStretch(1);
}

void SettingControl::follow(const std::function<void(const QVariant&)>& show)
{
    connect(&store_, &UserDefaults::valueChanged, this, [this, show](const QString& key) {
        if (key == setting_.key) {
            show(value());
        }
    });
    show(value());
}

void SettingControl::store(const QVariant& value)
{
    setSettingValue(store_, setting_, value);
}

void SettingControl::addToggle()
{
    auto* box = new QCheckBox(setting_.label, this);
    layout()->addWidget(box);
    follow([box](const QVariant& value) {
        const QSignalBlocker quiet(box);
        box->setChecked(value.toBool());
    });
    connect(box, &QCheckBox::toggled, this, [this](bool on) { store(on); });
}

void SettingControl::addStepper()
{
    auto* label = new TextLabel({}, style::interfaceFont(style::typeSize::body), Tint::primary(), this);
    label->setGivesWay(false);
    label->setMinimumWidth(labelWidth);
    layout()->addWidget(label);
    const auto addStep = [&](const QString& symbol, const QString& help, double step) {
        auto* button = new PlainButton(
            {.symbol = symbol, .symbolSize = 10, .ground = Tint::primary().at(0.1), .fixedSize = {24, 22}}, this);
        button->setHelp(help);
        button->setAccessibleDescription(setting_.label.trimmed());
        button->setAutoRepeat(true);
        connect(button, &PlainButton::clicked, this, [this, step] {
            const double stepped = value().toDouble() + step;
            if (stepped >= setting_.minimum && stepped <= setting_.maximum) {
                store(qRound(stepped));
            }
        });
        layout()->addWidget(button);
        return button;
    };
    PlainButton* less = addStep(u"minus"_s, tr("Less"), -setting_.step);
    PlainButton* more = addStep(u"plus"_s, tr("More"), setting_.step);
    follow([this, label, less, more](const QVariant& value) {
        label->setText(settingText(setting_, value));
        less->setEnabled(value.toDouble() > setting_.minimum);
        more->setEnabled(value.toDouble() < setting_.maximum);
    });
}

void SettingControl::addSlider()
{
    auto* label = new TextLabel({}, style::interfaceFont(style::typeSize::body), Tint::primary(), this);
    label->setGivesWay(false);
    label->setMinimumWidth(labelWidth);
    layout()->addWidget(label);
    // The slider counts steps, so that no value between two of them can come out.
    auto* slider = new QSlider(Qt::Horizontal, this);
    slider->setRange(0, qRound((setting_.maximum - setting_.minimum) / setting_.step));
    slider->setFixedWidth(sliderWidth);
    slider->setAccessibleName(setting_.label.trimmed());
    layout()->addWidget(slider);
    follow([this, label, slider](const QVariant& value) {
        label->setText(settingText(setting_, value));
        slider->setAccessibleDescription(settingText(setting_, value));
        const QSignalBlocker quiet(slider);
        slider->setValue(qRound((value.toDouble() - setting_.minimum) / setting_.step));
    });
    connect(slider, &QSlider::valueChanged, this, [this](int steps) {
        const double scale = std::pow(10, setting_.decimals);
        store(std::round((setting_.minimum + steps * setting_.step) * scale) / scale);
    });
}

void SettingControl::addPicker()
{
    auto* label = new TextLabel(setting_.label, style::interfaceFont(style::typeSize::body), Tint::primary(), this);
    label->setMinimumWidth(labelWidth);
    layout()->addWidget(label);
    auto* box = new QComboBox(this);
    for (const QString& choice : setting_.choices) {
        QFont font(choice);
        font.setPixelSize(pickerFontSize);
        box->addItem(choice);
        box->setItemData(box->count() - 1, font, Qt::FontRole);
    }
    box->setAccessibleName(setting_.label);
    // Where a screen reader takes the choice for the name.
    box->setAccessibleDescription(setting_.label);
    layout()->addWidget(box);
    follow([box](const QVariant& value) {
        const QSignalBlocker quiet(box);
        box->setCurrentIndex(box->findText(value.toString()));
    });
    // The list also tells of the choice that was made before.
    connect(box, &QComboBox::activated, this, [this, box](int index) {
        if (box->itemText(index) != value().toString()) {
            store(box->itemText(index));
        }
    });
}

} // namespace kelm
