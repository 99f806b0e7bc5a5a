#include "ViewController.h"

#include "Bundle.h"
#include "Colors.h"
#include "FatalStop.h"
#include "WindowDescription.h"

#include <QSignalBlocker>

#include <array>
#include <cstdlib>
#include <limits>

static_assert(ViewController::CFW_DATA_ARRAY_SIZE == std::tuple_size_v<FirmwareVersionRecord>);

namespace {

/// An unknown level is shown as the best quality.
std::uint8_t knownLevel(std::uint8_t level) {
    return level <= ViewController::CBIT_RATE_LOW ? level : ViewController::CBIT_RATE_HIGH;
}

/// The value of a control as a byte. A value out of range is a fault of the window description.
std::uint8_t checkedByte(int value, const char* control) {
    if (value < 0 || value > std::numeric_limits<std::uint8_t>::max())
        fatalStop("%s: %d does not fit in 8 bits", control, value);
    return static_cast<std::uint8_t>(value);
}

/// Shows a value that the device reported, without running the control's action.
void show(const Outlet<QSlider>& slider, std::uint8_t volume) {
    const QSignalBlocker blocker(slider.get());
    slider->setValue(volume);
}

void show(const Outlet<AttributedRadioButton>& button, bool selected) {
    const QSignalBlocker blocker(button.get());
    button->setChecked(selected);
    button->setFocusPolicy(selected ? Qt::StrongFocus : Qt::ClickFocus); // Tab goes to the selected one
}

QString firmwareText(const FirmwareVersionRecord& b) {
    //: The version numbers follow, as in "Firmware v1.2.3.4".
    return Localizable::tr("FW_VERSION", "FW_VERSION")
        + QString::asprintf(" v%d.%d.%d.%d (%02d%02d%02d%02d.%02d%02d%02d%02d)", b[0], b[1], b[2], b[3], b[4], b[5],
            b[6], b[7], b[8], b[9], b[10], b[11]);
}

} // namespace

void ViewController::viewDidLoad() {
    ContentController::viewDidLoad();
    DeviceCtrl.reset();
    DeviceCtrl = CVn318UvcController::CreateInstance();
    if (!DeviceCtrl) alertAndQuit();
    callOrQuit([](CVn318UvcController& device) { return device.SyncRtc(); });

    // From here on a failed read is shown as 0. If the device has failed, the user's next action opens the alert.
    std::uint8_t h264 = 0;
    std::uint8_t mjpeg = 0;
    (void)device().GetBitRate(h264, mjpeg);
    DisplayBitRateImage(h264);
    showVolume(SliderMicrophoneVolume, &CVn318UvcController::GetMicrophoneVolume);
    showVolume(SliderHeadphoneVolume, &CVn318UvcController::GetHeadphoneVolume);
    // The shared slider starts from the HDMI volume alone; the AUX volume is not read.
    showVolume(SliderHmdiAuxVolume, &CVn318UvcController::GetHdmiVolume);
    FirmwareVersionRecord firmware{};
    (void)device().GetFwVersion(firmware);
    std::uint8_t hdcp = CHDCP_OFF;
    (void)device().GetHdcpState(hdcp);
    DisplayHdcpRadioButton(hdcp);
    LabelFwVersion->setText(firmwareText(firmware));
    fillRecordQuality(h264);
    styleHdcpTitles();
}

void ViewController::showVolume(const Outlet<QSlider>& slider, VolumeRead read) {
    std::uint8_t reported = 0;
    (void)(device().*read)(reported); // 0 after a failure
    show(slider, reported);
}

void ViewController::fillRecordQuality(std::uint8_t level) {
    PopupRecordQuality->removeAllItems();
    PopupRecordQuality->addItemsWithTitles({
        //: A level of the record quality, 14 letters at most.
        Localizable::tr("HIGH", "High"),
        //: A level of the record quality, 14 letters at most.
        Localizable::tr("MIDDLE", "Middle"),
        //: A level of the record quality, 14 letters at most.
        Localizable::tr("LOW", "Low"),
    });
    PopupRecordQuality->selectItemAtIndex(level);
    describeStars(level);
    PopupRecordQuality->setArrowPosition(CustomPopUpButton::ArrowPosition::None);
    QMenu* menu = PopupRecordQuality->menu();
    menu->disconnect(this); // of an earlier start-up
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { menuWillOpen(menu); });
    connect(menu, &QMenu::aboutToHide, this, [this, menu] { menuDidClose(menu); });
}

void ViewController::styleHdcpTitles() {
    // On the scale 0 to 255 on purpose: it is clamped to white at 80 % opacity.
    const QColor light = deviceColor(230.0, 230.0, 230.0, 0.8);
    for (const auto* button : {&HdcpOnButton, &HdcpOffButton}) {
        const QString title = (*button)->text();
        (*button)->setAttributedTitle(createAttributedString(title, light, title, light));
    }
}

CVn318UvcController& ViewController::device() const {
    if (!DeviceCtrl) fatalStop("DeviceCtrl is absent");
    return *DeviceCtrl;
}

void ViewController::callOrQuit(const DeviceCall& call) {
    if (call(device())) return;
    DeviceCtrl.reset(); // closed before the device is opened again
    DeviceCtrl = CVn318UvcController::CreateInstance();
    if (!DeviceCtrl || !call(*DeviceCtrl)) alertAndQuit();
}

void ViewController::alertAndQuit() {
    showAlertWindow(this);
    std::exit(EXIT_SUCCESS);
}

void ViewController::showAlertWindow(QObject* /*sender*/) {
    WindowDescription(QStringLiteral("Main")).runModal(QStringLiteral("Alert Window Controller"));
}

void ViewController::QuitApp(QObject* /*sender*/) {
    std::exit(EXIT_SUCCESS);
}

void ViewController::ChooseRecordQuality(QObject* /*sender*/) {
    const std::uint8_t level = checkedByte(PopupRecordQuality->indexOfSelectedItem(), PopupRecordQuality.name());
    std::uint8_t h264 = 0;
    std::uint8_t mjpeg = 0;
    callOrQuit([&](CVn318UvcController& device) { return device.GetBitRate(h264, mjpeg); });
    // The value read back shows whether the write failed.
    (void)device().SetBitRate(level, mjpeg);
    (void)device().GetBitRate(h264, mjpeg);
    DisplayBitRateImage(h264);
    describeStars(h264);
}

void ViewController::DisplayBitRateImage(std::uint8_t level) {
    constexpr std::array kImages{"img_starBest.png", "img_starGood.png", "img_starGen.png"}; // by level
    QualityImage->setPixmap(mainBundle::imageNamed(QString::fromLatin1(kImages.at(knownLevel(level)))));
}

void ViewController::describeStars(std::uint8_t level) {
    QualityImage->setAccessibleDescription(PopupRecordQuality->itemTitles().value(knownLevel(level)));
}

void ViewController::menuWillOpen(QObject* /*menu*/) {
    PopupRecordQuality->setItemStyles(CPOPUP_TEXT_BLACK_COLOR);
}

void ViewController::menuDidClose(QObject* /*menu*/) {
    PopupRecordQuality->setItemStyles(CPOPUP_TEXT_WHITE_COLOR);
}

void ViewController::ChangeMicrophoneVolume(QObject* /*sender*/) {
    changeVolume(SliderMicrophoneVolume, &CVn318UvcController::SetMicrophoneVolume, nullptr,
        &CVn318UvcController::GetMicrophoneVolume);
}

void ViewController::ChangeHeadphoneVolume(QObject* /*sender*/) {
    changeVolume(SliderHeadphoneVolume, &CVn318UvcController::SetHeadphoneVolume, nullptr,
        &CVn318UvcController::GetHeadphoneVolume);
}

void ViewController::ChangeHdmiAuxVolume(QObject* /*sender*/) {
    changeVolume(SliderHmdiAuxVolume, &CVn318UvcController::SetHdmiVolume, &CVn318UvcController::SetAuxVolume,
        &CVn318UvcController::GetHdmiVolume);
}

void ViewController::changeVolume(
    const Outlet<QSlider>& slider, VolumeWrite write, VolumeWrite extraWrite, VolumeRead readBack) {
    const std::uint8_t chosen = checkedByte(slider->value(), slider.name());
    callOrQuit([&](CVn318UvcController& device) { return (device.*write)(chosen); });
    // On purpose, a failure of the extra write is neither retried nor reported.
    if (extraWrite) (void)(device().*extraWrite)(chosen);
    showVolume(slider, readBack);
}

void ViewController::TurnOnHdcp(QObject* /*sender*/) {
    switchHdcp(CHDCP_ON);
}

void ViewController::TurnOffHdcp(QObject* /*sender*/) {
    switchHdcp(CHDCP_OFF);
}

void ViewController::switchHdcp(std::uint8_t state) {
    callOrQuit([state](CVn318UvcController& device) { return device.SetHdcpState(state); });
    std::uint8_t reported = CHDCP_OFF;
    (void)device().GetHdcpState(reported);
    DisplayHdcpRadioButton(reported);
}

void ViewController::DisplayHdcpRadioButton(std::uint8_t state) {
    const bool on = state == CHDCP_ON;
    show(HdcpOnButton, on);
    show(HdcpOffButton, !on);
}
