#include "screens/menuform.h"

#include "app/dprintf.h"
#include "ui_menuform.h"

#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

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
    for (const Entry& entry : entries) {
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
    choose(std::clamp(ui->wgFlow->GetFocusIndex(), 0, int(std::size(entries)) - 1));
}

void MenuForm::esc_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (m_prevMode >= 0 && m_prevMode < int(std::size(entries)))
        choose(m_prevMode);
}

void MenuForm::choose(int index)
{
    // Copied out of the table first: a call through the table itself trips the compiler's sanitizer.
    const auto chosen = entries[index].chosen;
    (this->*chosen)();
}
