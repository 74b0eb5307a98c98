#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class MenuForm;
}

/** An entry of the mode menu, equal to the place of its slide. */
enum MENUIDX {
    MENUIDX_USB = 0,
    MENUIDX_AOE = 1,
    MENUIDX_IR = 2,
    MENUIDX_NetBGM = 3,
    MENUIDX_Setup = 4,
};

/**
 * The mode menu: a strip of slides to turn through. Choosing one emits the signal of its mode; what
 * follows is the business of whoever listens.
 */
class MenuForm : public QWidget {
    Q_OBJECT

public:
    explicit MenuForm(QWidget* parent = nullptr);
    ~MenuForm() override;

signals:
    void sgSetupMode();
    void sgNetBGMMode();
    void sgIRMode();
    void sgAOEMode();
    void sgUSBMode();

public slots:
    /** Brings an entry to the middle, so that a select without turning chooses it. */
    void setCurrentIdx(MENUIDX index);
    /** Keeps the mode that esc_action() goes back to. */
    void setPrevMode(MENUIDX index);
    void prev_action();
    void next_action();
    /** Chooses the entry that the user has turned to; beyond either end it is the first or the last. */
    void select_action();
    void esc_action();

private:
    struct Entry {
        MENUIDX index;
        const char* icon;
        void (MenuForm::*chosen)();
    };

    /** One row an entry, in the order of their indices. */
    static constexpr Entry entries[] = {
        {MENUIDX_USB, ":/menuicon/image/usb_icon.png", &MenuForm::sgUSBMode},
        {MENUIDX_AOE, ":/menuicon/image/aoe_icon.png", &MenuForm::sgAOEMode},
        {MENUIDX_IR, ":/menuicon/image/IR_icon.png", &MenuForm::sgIRMode},
        {MENUIDX_NetBGM, ":/menuicon/image/Net_BGM.png", &MenuForm::sgNetBGMMode},
        {MENUIDX_Setup, ":/menuicon/image/setup_icon.png", &MenuForm::sgSetupMode},
    };

    void addSlides();
    void choose(int index);

    std::unique_ptr<Ui::MenuForm> ui;
    /** No entry until a mode was left. */
    int m_prevMode = -1;
};
