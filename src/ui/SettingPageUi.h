#pragma once

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QWidget;

/// The controls of the settings page, made and laid out for the page's size. They are the page's children, and their
/// object names are the names of their fields. The page's `setLanguage` sets the captions.
struct SettingPageUi
{
    void build(QWidget *page);

    QLabel *lbl_Setting = nullptr;
    QLabel *lbl_Boot = nullptr;
    QCheckBox *ckb_StartOnBoot = nullptr;
    QCheckBox *ckb_MinimizeOnStart = nullptr;
    QCheckBox *ckb_ApplyLastSettingOnStart = nullptr;
    QLabel *lbl_PageEffect = nullptr;
    QComboBox *cmb_PageEffect = nullptr;
    QLabel *lbl_Language = nullptr;
    QComboBox *cmb_language = nullptr;
    QLabel *lbl_Monitor = nullptr;
    QLabel *lbl_RefreshTime = nullptr;
    QComboBox *cmb_RefreshTime = nullptr;
    QLabel *lbl_UpdateInOnline = nullptr;
    QLabel *lbl_UpdateFre = nullptr;
    QComboBox *cmb_UpdateFre = nullptr;
    QRadioButton *rdb_AutomaticDownloadAndInstall = nullptr;
    QRadioButton *rdb_TellMeButDoNotDownload = nullptr;
    QPushButton *btnDetectUpdate = nullptr;
    QPushButton *btnUpdateLog = nullptr;

private:
    void makeControls(QWidget *page);
    void layOut(QWidget *page);
};
