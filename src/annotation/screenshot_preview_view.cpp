#include "annotation/screenshot_preview_view.h"

#include <QApplication>
#include <QBuffer>
#include <QFileInfo>
#include <QFuture>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QVariantAnimation>
#include <QtConcurrent/QtConcurrentRun>

#include "annotation/annotated_image_renderer.h"
#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_sidebar.h"
#include "annotation/preview_image_space.h"
#include "annotation/preview_sidebar.h"
#include "annotation/video_player_view.h"
#include "capture/capture_file_writer.h"
#include "capture/capture_registry.h"

namespace {

constexpr int kEntranceDurationMs = 300;
constexpr qreal kEntranceOffset = 10.0;

// A one-point vertical line in the text colour at a quarter opacity.
class PreviewDivider : public QWidget {
public:
    explicit PreviewDivider(QWidget* parent) : QWidget(parent) {
        setFixedWidth(1);
        setAccessibleName(QStringLiteral("Divider"));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QColor line = palette().color(QPalette::WindowText);
        line.setAlphaF(0.25f);
        painter.fillRect(rect(), line);
    }
};

// The picture read with its orientation applied, the format decided by the
// content (a rewritten file keeps its old extension); null when unreadable.
QImage readPicture(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    return reader.read();
}

// The PNG encoding of `image`; empty when it fails.
QByteArray encodePng(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (image.isNull() || !buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) {
        return {};
    }
    return bytes;
}

bool isSaveOrUndoKey(const QKeyEvent* key) {
    const Qt::KeyboardModifiers modifiers =
        key->modifiers() &
        (Qt::ControlModifier | Qt::MetaModifier | Qt::AltModifier | Qt::ShiftModifier);
    if (modifiers != Qt::ControlModifier && modifiers != Qt::MetaModifier) {
        return false;
    }
    return key->key() == Qt::Key_S || key->key() == Qt::Key_Z;
}

}  // namespace

// The picture drawn scaled into its display rectangle, with the annotation
// canvas over the whole area. The canvas takes the mouse only while drawing
// is on, so the window below it stays usable otherwise.
class PreviewImageArea : public QWidget {
public:
    PreviewImageArea(AnnotationState& state, const QString& fileName, QWidget* parent)
        : QWidget(parent), canvas_(new AnnotationCanvasView(state, QImage(), this)) {
        setAccessibleName(fileName);
        setMinimumSize(1, 1);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        followDrawingEnabled(state.isDrawingEnabled());
        connect(&state, &AnnotationState::drawingEnabledChanged, this,
                [this](bool enabled) { followDrawingEnabled(enabled); });
    }

    AnnotationCanvasView* canvas() const { return canvas_; }
    QRectF displayRect() const { return displayRect_; }
    const QImage& image() const { return image_; }

    void setImage(const QImage& image) {
        image_ = image;
        scaled_ = QPixmap();
        canvas_->setSourceImage(image);
        relayout();
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        relayout();
    }

    void paintEvent(QPaintEvent*) override {
        if (image_.isNull() || displayRect_.isEmpty()) {
            return;
        }
        const qreal ratio = devicePixelRatioF();
        const QSize pixels = (displayRect_.size() * ratio).toSize();
        if (pixels.isEmpty()) {
            return;
        }
        if (scaled_.size() != pixels) {
            scaled_ = QPixmap::fromImage(
                image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
            scaled_.setDevicePixelRatio(ratio);
        }
        QPainter painter(this);
        painter.drawPixmap(displayRect_.topLeft(), scaled_);
    }

private:
    void followDrawingEnabled(bool enabled) {
        canvas_->setAttribute(Qt::WA_TransparentForMouseEvents, !enabled);
    }

    void relayout() {
        displayRect_ = image_.isNull()
                           ? QRectF()
                           : previewImageDisplayRect(size(), image_.deviceIndependentSize());
        canvas_->setGeometry(rect());
        canvas_->setImageRect(displayRect_);
        canvas_->update();
        update();
    }

    AnnotationCanvasView* canvas_;
    QImage image_;
    QPixmap scaled_;
    QRectF displayRect_;
};

ScreenshotPreviewView::ScreenshotPreviewView(const ScreenshotItem& item,
                                             ScreenshotMetadataStore& metaStore,
                                             std::function<void()> refreshLibrary, QWidget* parent)
    : QWidget(parent),
      item_(item),
      metaStore_(metaStore),
      refreshLibrary_(std::move(refreshLibrary)) {
    setAccessibleName(QStringLiteral("Preview of %1").arg(item.fileName()));
    setMinimumSize(400, 300);

    content_ = new QWidget(this);
    auto* row = new QHBoxLayout(content_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);

    annotationSidebar_ = new AnnotationSidebar(&annotationState_, content_);
    connect(annotationSidebar_, &AnnotationSidebar::saveRequested, this,
            &ScreenshotPreviewView::save);
    row->addWidget(annotationSidebar_);

    if (item_.isVideo()) {
        videoPlayer_ = new VideoPlayerView(item_.url(), content_);
        row->addWidget(videoPlayer_, 1);
    } else {
        imageArea_ = new PreviewImageArea(annotationState_, item_.fileName(), content_);
        row->addWidget(imageArea_, 1);
    }

    row->addWidget(new PreviewDivider(content_));

    previewSidebar_ = new PreviewSidebar(item_, metaStore_, refreshLibrary_, content_);
    connect(previewSidebar_, &PreviewSidebar::renamed, this, [this](const QString& newPath) {
        item_ = ScreenshotItem(newPath, item_.date(), item_.modifiedDate(), item_.thumbnail());
    });
    row->addWidget(previewSidebar_);

    entranceAnimation_ = new QVariantAnimation(this);
    entranceAnimation_->setDuration(kEntranceDurationMs);
    entranceAnimation_->setEasingCurve(QEasingCurve::OutCubic);
    entranceAnimation_->setStartValue(0.0);
    entranceAnimation_->setEndValue(1.0);
    connect(entranceAnimation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setEntrance(value.toReal()); });
    setEntrance(0.0);
}

ScreenshotPreviewView::~ScreenshotPreviewView() {
    if (keyMonitorInstalled_) {
        qApp->removeEventFilter(this);
    }
}

QRectF ScreenshotPreviewView::imageDisplayRect() const {
    return imageArea_ ? imageArea_->displayRect() : QRectF();
}

QWidget* ScreenshotPreviewView::imageArea() const {
    return imageArea_;
}

AnnotationCanvasView* ScreenshotPreviewView::canvas() const {
    return imageArea_ ? imageArea_->canvas() : nullptr;
}

void ScreenshotPreviewView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!keyMonitorInstalled_) {
        qApp->installEventFilter(this);
        keyMonitorInstalled_ = true;
    }
    if (!appeared_) {
        appear();
    }
}

void ScreenshotPreviewView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (keyMonitorInstalled_) {
        qApp->removeEventFilter(this);
        keyMonitorInstalled_ = false;
    }
}

void ScreenshotPreviewView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeContent();
}

void ScreenshotPreviewView::appear() {
    appeared_ = true;
    loadImage();
    entranceAnimation_->start();
}

void ScreenshotPreviewView::loadImage() {
    if (item_.isVideo()) {
        loadFinished_ = true;
        Q_EMIT imageLoadFinished();
        return;
    }
    const QString path = item_.path();
    QtConcurrent::run([path] { return readPicture(path); }).then(this, [this](const QImage& image) {
        takeLoadedImage(image);
    });
}

void ScreenshotPreviewView::takeLoadedImage(const QImage& image) {
    if (!image.isNull()) {
        loadedImage_ = image;
    }
    imageArea_->setImage(image);
    loadFinished_ = true;
    Q_EMIT imageLoadFinished();
}

void ScreenshotPreviewView::save() {
    if (item_.isVideo() || !loadedImage_ || !imageArea_ || saving_) {
        return;
    }
    const QRectF display = imageArea_->displayRect();
    if (display.width() <= 1 || display.height() <= 1) {
        return;
    }
    const QImage image = *loadedImage_;
    const QSizeF imageSize = image.deviceIndependentSize();
    const QVector<Annotation> annotations =
        annotationsInImageSpace(annotationState_.annotations(), display, imageSize);
    const std::optional<QRectF> crop =
        cropInImageSpace(annotationState_.cropRect(), display, imageSize);
    const QString path = item_.path();
    saving_ = true;
    // Flattened and encoded on a worker; the rewrite keeps an own capture own.
    auto flattened = std::make_shared<QImage>();
    rewriteCapture(
        path,
        [image, annotations, crop, flattened] {
            *flattened = renderAnnotatedImage(image, annotations, crop, 1.0);
            return encodePng(*flattened);
        },
        this, CaptureRegistry::shared())
        .then(this, [this, flattened](bool written) {
            saving_ = false;
            if (written) {
                takeSavedImage(*flattened);
            }
        });
}

void ScreenshotPreviewView::takeSavedImage(const QImage& image) {
    loadedImage_ = image;
    imageArea_->setImage(image);
    // Empty the document; tool, colour and drawing switch stay as they are.
    while (!annotationState_.annotations().isEmpty() || annotationState_.cropRect()) {
        annotationState_.undo();
    }
    if (refreshLibrary_) {
        refreshLibrary_();
    }
    Q_EMIT saved();
}

void ScreenshotPreviewView::placeContent() {
    const int offset = qRound(kEntranceOffset * (1.0 - entrance_));
    content_->setGeometry(0, offset, width(), height());
}

void ScreenshotPreviewView::setEntrance(qreal progress) {
    entrance_ = progress;
    placeContent();
    // A player draws into a window of its own, which no effect can fade;
    // there the window's own fade does it.
    if (videoPlayer_) {
        return;
    }
    if (progress < 1.0) {
        auto* effect = qobject_cast<QGraphicsOpacityEffect*>(content_->graphicsEffect());
        if (!effect) {
            effect = new QGraphicsOpacityEffect(content_);
            content_->setGraphicsEffect(effect);
        }
        effect->setOpacity(progress);
    } else {
        content_->setGraphicsEffect(nullptr);  // deletes it
    }
}

bool ScreenshotPreviewView::eventFilter(QObject* watched, QEvent* event) {
    const QEvent::Type type = event->type();
    if ((type != QEvent::KeyPress && type != QEvent::ShortcutOverride) ||
        !watched->isWidgetType()) {
        return QWidget::eventFilter(watched, event);
    }
    auto* target = static_cast<QWidget*>(watched);
    auto* key = static_cast<QKeyEvent*>(event);
    if (target->window() != window() || !isVisible() || !isSaveOrUndoKey(key)) {
        return QWidget::eventFilter(watched, event);
    }
    if (type == QEvent::ShortcutOverride) {
        // Keep the keys from any shortcut or field: they arrive as key
        // presses, which are taken below.
        event->accept();
        return true;
    }
    if (key->key() == Qt::Key_S) {
        if (!key->isAutoRepeat()) {
            save();
        }
    } else {
        annotationState_.undo();
    }
    return true;
}
