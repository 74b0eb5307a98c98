#include "screens/netbgmform.h"

#include "ui_netbgmform.h"

NetbgmForm::NetbgmForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::NetbgmForm>())
{
    ui->setupUi(this);
}

NetbgmForm::~NetbgmForm() = default;
