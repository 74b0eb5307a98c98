#include "screens/netbgmform.h"

#include "ui_netbgmform.h"

NetbgmForm::NetbgmForm(QWidget* parent)
    : QWidget(parent)
    , m_form(std::make_unique<Ui::NetbgmForm>())
{
    m_form->setupUi(this);
}

NetbgmForm::~NetbgmForm() = default;
