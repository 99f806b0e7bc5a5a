// Measures the painting of the drawn controls, on a raster surface at 100 %.

#include "ApplicationMain.h"
#include "CustomPopUpButton.h"
#include "CustomSliderCell.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

namespace {

void paint(benchmark::State& state, QWidget& control) {
    QImage surface(control.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) control.render(&surface);
}

void paintSlider(benchmark::State& state) {
    CustomSliderCell slider(nullptr);
    slider.setOrientation(Qt::Horizontal);
    slider.resize(366, 48);
    paint(state, slider);
}

void paintPopUp(benchmark::State& state) {
    CustomPopUpButton popUp(nullptr);
    popUp.resize(160, 28);
    popUp.addItemsWithTitles({QStringLiteral("High"), QStringLiteral("Middle"), QStringLiteral("Low")});
    paint(state, popUp);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    setUpApplication(application);
    benchmark::RegisterBenchmark("slider", paintSlider);
    benchmark::RegisterBenchmark("pop-up", paintPopUp);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
