#pragma once

#include "AttributedRadioButton.h"
#include "ContentController.h"
#include "CustomPopUpButton.h"
#include "Labels.h"
#include "VN318UvcController.h"

#include <QLabel>
#include <QPushButton>
#include <QSlider>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

/// Controls the settings window. Start-up shows the settings of the device. Every action of the user writes its
/// settings, reads them back and shows the values that were read.
class ViewController : public ContentController {
    Q_OBJECT

public:
    Q_INVOKABLE ViewController() = default;

    // A higher bit-rate level has lower quality. The pop-up's items are in the order of the levels.
    static constexpr std::uint8_t CBIT_RATE_HIGH = 0;
    static constexpr std::uint8_t CBIT_RATE_MIDDLE = 1;
    static constexpr std::uint8_t CBIT_RATE_LOW = 2;
    static constexpr std::ptrdiff_t CFW_DATA_ARRAY_SIZE = 12; ///< bytes
    static constexpr std::uint8_t CHDCP_ON = 1;
    static constexpr std::uint8_t CHDCP_OFF = 0;

    Outlet<MyImageView> MyMainImageView{m_outlets, "MyMainImageView"};
    Outlet<QLabel> LabelBitRateState{m_outlets, "LabelBitRateState"};
    Outlet<QPushButton> ButtonHigh{m_outlets, "ButtonHigh"};
    Outlet<QPushButton> ButtonMiddle{m_outlets, "ButtonMiddle"};
    Outlet<QPushButton> ButtonLow{m_outlets, "ButtonLow"};
    Outlet<CustomPopUpButton> PopupRecordQuality{m_outlets, "PopupRecordQuality"};
    Outlet<QLabel> QualityImage{m_outlets, "QualityImage"};
    Outlet<QLabel> LabelMicrophoneVolume{m_outlets, "LabelMicrophoneVolume"};
    Outlet<QSlider> SliderMicrophoneVolume{m_outlets, "SliderMicrophoneVolume"};
    Outlet<QLabel> LabelHeadphoneVolume{m_outlets, "LabelHeadphoneVolume"};
    Outlet<QSlider> SliderHeadphoneVolume{m_outlets, "SliderHeadphoneVolume"};
    Outlet<QLabel> LabelHdmiAuxVolume{m_outlets, "LabelHdmiAuxVolume"};
    // "Hmdi" is the spelling in the window description.
    Outlet<QSlider> SliderHmdiAuxVolume{m_outlets, "SliderHmdiAuxVolume"};
    Outlet<QLabel> LabelFwVersion{m_outlets, "LabelFwVersion"};
    Outlet<AttributedRadioButton> HdcpOnButton{m_outlets, "HdcpOnButton"};
    Outlet<AttributedRadioButton> HdcpOffButton{m_outlets, "HdcpOffButton"};

    /// The open device; absent before start-up, between two openings and after a failed one.
    std::unique_ptr<CVn318UvcController> DeviceCtrl;

    /// Start-up. Blocks until all settings are read. If there is no device, or its clock can't be set, shows the alert
    /// and ends the program.
    void viewDidLoad() override;

    /// Shows a bit-rate level as stars; an unknown one as the best.
    void DisplayBitRateImage(std::uint8_t level);
    /// Only the state 1 is shown as on.
    void DisplayHdcpRadioButton(std::uint8_t state);

public slots:
    void ChooseRecordQuality(QObject* sender);
    void ChangeMicrophoneVolume(QObject* sender);
    void ChangeHeadphoneVolume(QObject* sender);
    void ChangeHdmiAuxVolume(QObject* sender);
    void TurnOnHdcp(QObject* sender);
    void TurnOffHdcp(QObject* sender);
    /// Runs the alert window modally. Neither ends the program nor touches the device.
    void showAlertWindow(QObject* sender);
    /// Ends the program at once with status 0.
    [[noreturn]] void QuitApp(QObject* sender);
    void menuWillOpen(QObject* menu);
    void menuDidClose(QObject* menu);

private:
    using DeviceCall = std::function<bool(CVn318UvcController&)>;
    using VolumeWrite = bool (CVn318UvcController::*)(int);
    using VolumeRead = bool (CVn318UvcController::*)(std::uint8_t&);

    /// The open device. Stops the program if it is absent.
    [[nodiscard]] CVn318UvcController& device() const;
    /// Makes the call. If it fails the device is opened again and the call is repeated once; if that fails too, the
    /// alert is shown and the program ends.
    void callOrQuit(const DeviceCall& call);
    [[noreturn]] void alertAndQuit();
    /// Writes the value of the slider, then shows the value that the device reports. `extraWrite` may be absent.
    void changeVolume(const Outlet<QSlider>& slider, VolumeWrite write, VolumeWrite extraWrite, VolumeRead readBack);
    void switchHdcp(std::uint8_t state);
    void showVolume(const Outlet<QSlider>& slider, VolumeRead read);
    void fillRecordQuality(std::uint8_t level);
    /// Describes the stars for assistive technology by the title of their level.
    void describeStars(std::uint8_t level);
    void styleHdcpTitles();
};
