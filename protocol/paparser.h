#pragma once

#include "link/vocabulary.h"

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * Turns one packet of the supervisor into signals: the whole event vocabulary of the program.
 *
 * A handler takes the packet's data bytes, the header removed. Data of a wrong length is logged and dropped;
 * unknown values are dropped. Signals marked "never" are part of the vocabulary but no packet carries them.
 */
class PAparser : public QObject {
    Q_OBJECT

public:
    explicit PAparser(QObject* parent = nullptr);

    /** Takes one packet, header included, logs it and runs the one handler of its command. */
    void parseBySupervisor(QByteArray packet);

    /** Whether a header with a command of 1 to 10 and a length stands behind a prefix of four bytes. */
    bool isRightCMD(QByteArray packet);
    /** False when `packet` repeats the one before; keys are never repeats. */
    bool isDifferentPacket(QByteArray packet, quint16 command);

    void parseFilename(QByteArray data);
    void parseTime(QByteArray data);
    void parseMode(QByteArray data);
    void parseLevel(QByteArray data);
    void parseKey(QByteArray data);
    void parseDiskStat(QByteArray data);
    void parseDevice(QByteArray data);
    void parseIRStationInfo(QByteArray data);
    void parseDiskInfo(QByteArray data);
    void parseEnc(QByteArray data);
    void parseRequest(QByteArray data);
    void parseMenuDhcp(QByteArray data);
    void parseUpgradeInfo(QByteArray data);
    void parseUpgradeMSG(QByteArray data);
    void parseAOE_STAT(QByteArray data);
    /** No command reaches this one: the connection is read from its file instead. */
    void parseAOEInfo(QByteArray data);

signals:
    void sgPlayTime(QString strTime);
    /** The master meter: 0 to 8 segments. */
    void sgMasterLevel(unsigned char btLevel);
    void sgFileName(QString strFileName);
    void sgKEY_STOP();
    void sgKEY_PLAY_PAUSE();
    void sgKEY_PLAY();
    void sgKEY_PAUSE(); ///< never
    void sgKEY_PREV();
    void sgKEY_NEXT();
    void sgKEY_MODE();
    void sgKEY_SELECT();
    void sgKEY_ESC();
    void sgKEY_FONT(); ///< never
    void sgKEY_LONG_STOP();
    void sgKEY_LONG_PLAY_PAUSE();
    void sgKEY_LONG_PREV();
    void sgKEY_LONG_NEXT();
    void sgKEY_LONG_MODE();
    void sgKEY_LONG_SELECT();
    void sgKEY_LONG_ESC();
    void sgMode_rpt_All();
    void sgMode_rpt_One();
    void sgMode_rpt_Folder();
    void sgMode_All();
    void sgMode_One();
    void sgMode_Folder();
    void sgMode_shuffle();
    void sgMode_off_Shuffle();
    void sgDiskStatNormal();
    void sgDiskRemoved();
    void sgDiskInfo(QString strFolder, QString strFiles);
    void sgAoeInfo(QString strIp, QString strSampleRate); ///< never
    void sgIRInfo(QString strTitle, QString strUrl);
    void sgDEVICE_USB_FRONT_Enter();
    void sgDEVICE_USB_FRONT_Exit();
    void sgDEVICE_USB_STREAM_Enter();
    void sgDEVICE_USB_STREAM_Exit();
    void sgDEVICE_AUX_Enter();
    void sgDEVICE_AUX_Exit();
    void sgDEVICE_IR_Enter();
    void sgDEVICE_IR_Exit();
    void sgDEVICE_AOE_Enter();
    void sgDEVICE_AOE_Exit();
    void sgDEVICE_NetBGM_Enter(); ///< never
    void sgDEVICE_NetBGM_Exit(); ///< never
    void sgDEVICE_Menu_Enter(); ///< never
    void sgDEVICE_Menu_Exit(); ///< never
    void sgDEVICE_Set_Enter(); ///< never
    void sgDEVICE_Set_Exit(); ///< never
    void sgEncLeft();
    void sgEncRight();
    void sgMenuRequest();
    void sgDHCP_NO(); ///< never
    void sgDHCP_YES(); ///< never
    void sgDHCP_CMP();
    void sgUpgradeStart();
    void sgUpgradeFail();
    void sgUpgradeMSG(QString strMsg);
    void sgAOE_STAT_STOP();
    void sgAOE_STAT_OK();
    void sgAOE_STAT_FAIL();
    void sgAOE_STAT_OVER();

private:
    using Handler = void (PAparser::*)(QByteArray);

    struct HandlerRow {
        Command command;
        Handler handler;
    };

    /** Whether there is exactly one data byte; if not, logs `message`. */
    static bool isOneByte(const QByteArray& data, const char* message);

    /** One row a command that is heard; any other is accepted and ignored. */
    static constexpr HandlerRow handlers[] = {
        {Command::Filename, &PAparser::parseFilename},
        {Command::Time, &PAparser::parseTime},
        {Command::Mode, &PAparser::parseMode},
        {Command::Level, &PAparser::parseLevel},
        {Command::Key, &PAparser::parseKey},
        {Command::DiskStat, &PAparser::parseDiskStat},
        {Command::Device, &PAparser::parseDevice},
        {Command::IRStation, &PAparser::parseIRStationInfo},
        {Command::DiskInfo, &PAparser::parseDiskInfo},
        {Command::Encoder, &PAparser::parseEnc},
        {Command::Request, &PAparser::parseRequest},
        {Command::MenuDhcp, &PAparser::parseMenuDhcp},
        {Command::UpgradeInfo, &PAparser::parseUpgradeInfo},
        {Command::UpgradeMsg, &PAparser::parseUpgradeMSG},
        {Command::AoeStat, &PAparser::parseAOE_STAT},
    };

    QByteArray m_spare; // reserved: the order of the members is fixed
    QByteArray m_lastPacket;
    quint8 m_lastLevel = 0;
    quint8 m_levelBefore = 0;
};
