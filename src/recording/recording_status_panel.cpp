// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "recording/recording_status_panel.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSequentialAnimationGroup>
#include <QVariantAnimation>
#include <QtMath>
#include <algorithm>

#include "widgets/widget_style.h"

namespace {

constexpr int kCornerRadius = 12;
constexpr int kDotSize = 8;
constexpr qreal kPulseScale = 1.25;
constexpr int kPulseMs = 700;
constexpr int kTextPixelSize = 13;
constexpr int kTopOffset = 60;
constexpr int kClockMs = 1000;
const QColor kRed(255, 59, 48);

// The red dot, growing to 1.25 times its size and back, for as long as it
// is shown.
class PulsingDot : public QWidget {
public:
    explicit PulsingDot(QWidget* parent) : QWidget(parent), pulse_(this) {
        setFixedSize(qCeil(kDotSize * kPulseScale) + 2, qCeil(kDotSize * kPulseScale) + 2);
        setAccessibleName(QObject::tr("Recording indicator"));
        addHalf(1.0, kPulseScale);
        addHalf(kPulseScale, 1.0);
        pulse_.setLoopCount(-1);
    }

    qreal scale() const { return scale_; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(kRed);
        const qreal diameter = kDotSize * scale_;
        painter.drawEllipse(QRectF(QPointF(width() - diameter, height() - diameter) / 2,
                                   QSizeF(diameter, diameter)));
    }
    void showEvent(QShowEvent* event) override {
        pulse_.start();
        QWidget::showEvent(event);
    }
    void hideEvent(QHideEvent* event) override {
        pulse_.stop();
        scale_ = 1.0;
        QWidget::hideEvent(event);
    }

private:
    void addHalf(qreal from, qreal to) {
        auto* half = new QVariantAnimation(&pulse_);
        half->setStartValue(from);
        half->setEndValue(to);
        half->setDuration(kPulseMs);
        half->setEasingCurve(QEasingCurve::InOutSine);
        QObject::connect(half, &QVariantAnimation::valueChanged, this,
                         [this](const QVariant& value) {
                             scale_ = value.toReal();
                             update();
                         });
        pulse_.addAnimation(half);
    }

    QSequentialAnimationGroup pulse_;
    qreal scale_ = 1.0;
};

QLabel* makeLabel(const QString& text, const QFont& font, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setFont(font);
    return label;
}

}  // namespace

RecordingStatusPanel::RecordingStatusPanel(std::function<bool()> isRecording,
                                           std::function<void()> onStop, QWidget* parent)
    : FloatingPanel(tr("Recording"), kCornerRadius, Focus::refuses, parent),
      isRecording_(std::move(isRecording)),
      onStop_(std::move(onStop)),
      dot_(new PulsingDot(this)),
      elapsedLabel_(
          makeLabel(formatElapsed(0),
                    widget_style::font(QFontDatabase::systemFont(QFontDatabase::FixedFont),
                                       kTextPixelSize, QFont::Medium),
                    this)),
      stopButton_(new QPushButton(tr("Stop"), this)) {
    setFixedSize(kWidth, kHeight);
    QLabel* title =
        makeLabel(tr("Recording"), widget_style::font(font(), kTextPixelSize, QFont::Medium), this);
    title->setAccessibleName(tr("Recording"));

    // Every digit as wide as the others, so the time does not jitter.
    QFont digits = elapsedLabel_->font();
    digits.setStyleHint(QFont::Monospace);
    elapsedLabel_->setFont(digits);
    QPalette secondary = elapsedLabel_->palette();
    secondary.setColor(QPalette::WindowText, widget_style::secondary(palette()));
    elapsedLabel_->setPalette(secondary);
    elapsedLabel_->setAccessibleDescription(tr("Elapsed time"));
    elapsedLabel_->setAccessibleName(formatElapsed(0));

    stopButton_->setAccessibleName(tr("Stop"));
    stopButton_->setFocusPolicy(Qt::NoFocus);
    stopButton_->setCursor(Qt::PointingHandCursor);
    stopButton_->setStyleSheet(QStringLiteral("QPushButton { background: %1; color: white; "
                                              "border: none; border-radius: 6px; "
                                              "padding: 4px 12px; font-weight: 600; }"
                                              "QPushButton:pressed { background: %2; }")
                                   .arg(kRed.name(), kRed.darker(120).name()));
    connect(stopButton_, &QPushButton::clicked, this, [this] {
        if (onStop_) {
            onStop_();
        }
    });

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(12, 0, 8, 0);
    row->setSpacing(8);
    row->addWidget(dot_);
    row->addWidget(title);
    row->addWidget(elapsedLabel_);
    row->addStretch();
    row->addWidget(stopButton_);

    clock_.setInterval(kClockMs);
    connect(&clock_, &QTimer::timeout, this, &RecordingStatusPanel::tick);
}

QRect RecordingStatusPanel::placement(const QRect& screenGeometry) {
    return {screenGeometry.x() + screenGeometry.width() / 2 - kWidth / 2,
            screenGeometry.y() + kTopOffset, kWidth, kHeight};
}

QString RecordingStatusPanel::formatElapsed(int seconds) {
    seconds = std::max(0, seconds);
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void RecordingStatusPanel::showOn(const QRect& screenGeometry) {
    setGeometry(placement(screenGeometry));
    show();
    raise();
}

QString RecordingStatusPanel::elapsedText() const {
    return elapsedLabel_->text();
}

void RecordingStatusPanel::tick() {
    if (!isRecording_ || !isRecording_()) {
        clock_.stop();
        return;
    }
    ++elapsed_;
    const QString text = formatElapsed(elapsed_);
    elapsedLabel_->setText(text);
    elapsedLabel_->setAccessibleName(text);
}

void RecordingStatusPanel::showEvent(QShowEvent* event) {
    // The clock starts with the first showing and runs until the recorder
    // stops; a hidden panel keeps nothing ticking.
    if (!clockStarted_) {
        clockStarted_ = true;
        clock_.start();
    }
    FloatingPanel::showEvent(event);
}

void RecordingStatusPanel::hideEvent(QHideEvent* event) {
    clock_.stop();
    FloatingPanel::hideEvent(event);
}
