#include "screens/menuform.h"

#include "app/dprintf.h"
#include "ui_menuform.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

struct MenuEntry {
    MENUIDX index;
    const char* icon;
    void (MenuForm::*chosen)();
};

constexpr MenuEntry entries[] = {
    {MENUIDX_USB, ":/menuicon/image/usb_icon.png", &MenuForm::sgUSBMode},
    {MENUIDX_AOE, ":/menuicon/image/aoe_icon.png", &MenuForm::sgAOEMode},
    {MENUIDX_IR, ":/menuicon/image/IR_icon.png", &MenuForm::sgIRMode},
    {MENUIDX_NetBGM, ":/menuicon/image/Net_BGM.png", &MenuForm::sgNetBGMMode},
    {MENUIDX_Setup, ":/menuicon/image/setup_icon.png", &MenuForm::sgSetupMode},
};
static_assert(std::size(entries) == MENUIDX_Setup + 1, "one row an entry");

constexpr QSize screenSize(320, 240);
constexpr QSize slideSize(100, 100);

} // namespace

MenuForm::MenuForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::MenuForm>())
{
    ui->setupUi(this);
    ui->wgFlow->resize(screenSize);
    ui->wgFlow->setSlideSize(slideSize);
    addSlides();
    ui->wgFlow->setReflectionEffect(PictureFlow::SoftReflection);
    ui->wgFlow->setCenterIndex(MENUIDX_USB);
    ui->wgFlow->focusIndex = MENUIDX_USB;
    ui->wgFlow->setBackgroundColor(Qt::black);
}

MenuForm::~MenuForm() = default;

/** An icon that is not there is passed over, which moves the entries behind it. */
void MenuForm::addSlides()
{
    for (const MenuEntry& entry : entries) {
        const QString icon = QLatin1String(entry.icon);
        if (QFile::exists(icon))
            ui->wgFlow->addResourceSlide(icon);
    }
}

void MenuForm::setCurrentIdx(MENUIDX index)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wgFlow->setCenterIndex(index);
    ui->wgFlow->focusIndex = index;
}

void MenuForm::setPrevMode(MENUIDX index)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_prevMode = index;
}

void MenuForm::prev_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wgFlow->showPrevious();
}

void MenuForm::next_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wgFlow->showNext();
}

void MenuForm::select_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const int chosen = std::clamp(ui->wgFlow->GetFocusIndex(), int(MENUIDX_USB), int(MENUIDX_Setup));
    choose(chosen);
}

void MenuForm::esc_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (m_prevMode >= MENUIDX_USB && m_prevMode <= MENUIDX_Setup)
        choose(m_prevMode);
}

void MenuForm::choose(int index)
{
    // Copied out of the table first: a call through the table itself trips the compiler's sanitizer.
    const auto chosen = entries[index].chosen;
    (this->*chosen)();
}
