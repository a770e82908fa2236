// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Quillix developers

#include "preview/screenshot_preview_view.h"

#include <QApplication>
#include <QFileInfo>
#include <QFuture>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QTextEdit>
#include <QVariantAnimation>
#include <QtConcurrent/QtConcurrentRun>

#include "annotation/annotation_canvas_view.h"
#include "annotation/annotation_sidebar.h"
#include "library/capture_file_writer.h"
#include "library/capture_image_loader.h"
#include "library/capture_registry.h"
#include "library/image_allocation_limit.h"
#include "library/png_encoding.h"
#include "library/screenshot_store.h"
#include "preview/preview_image_space.h"
#include "preview/preview_sidebar.h"
#include "preview/video_player_view.h"

namespace {

constexpr int kEntranceDurationMs = 300;
constexpr qreal kEntranceOffset = 10.0;
// Pictures are drawn from a copy at most this many pixels on the longer
// side, made on a worker: scaling a picture of hundreds of megapixels to the
// window on every resize would stall the window.
constexpr int kDisplayMaxSide = 4096;

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

// A picture as the preview shows it: the whole picture, the copy it is
// drawn from, and a note when it cannot be shown.
struct ReadPicture {
    QImage image;
    QImage display;
    QString message;
};

// The copy a picture is drawn from: itself, or a smaller copy of a huge one.
QImage displayCopy(const QImage& image) {
    if (image.isNull() || std::max(image.width(), image.height()) <= kDisplayMaxSide) {
        return image;
    }
    return image.scaled(kDisplayMaxSide, kDisplayMaxSide, Qt::KeepAspectRatio,
                        Qt::SmoothTransformation);
}

// The picture read for showing; null with a note when it is too large for
// the memory the program allows for one image, null alone when unreadable.
ReadPicture readPicture(const QString& path) {
    const LoadedCaptureImage loaded = loadCaptureImage(path);
    ReadPicture picture;
    if (loaded.status == CaptureImageStatus::tooLarge) {
        picture.message = QStringLiteral("This picture is too large to show (%1 × %2 pixels).")
                              .arg(loaded.statedSize.width())
                              .arg(loaded.statedSize.height());
    }
    picture.image = loaded.image;
    picture.display = displayCopy(picture.image);
    return picture;
}

Qt::KeyboardModifiers significantModifiers(const QKeyEvent* key) {
    return key->modifiers() &
           (Qt::ControlModifier | Qt::MetaModifier | Qt::AltModifier | Qt::ShiftModifier);
}

// Ctrl (or Super) with S, Z or W.
bool isCommandKey(const QKeyEvent* key) {
    const Qt::KeyboardModifiers modifiers = significantModifiers(key);
    if (modifiers != Qt::ControlModifier && modifiers != Qt::MetaModifier) {
        return false;
    }
    return key->key() == Qt::Key_S || key->key() == Qt::Key_Z || key->key() == Qt::Key_W;
}

// Whether a text field has the keyboard (the annotation text, a rename, an
// event): its keys are its own.
bool isTyping() {
    const QWidget* focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QTextEdit*>(focus) ||
           qobject_cast<const QPlainTextEdit*>(focus);
}

// Escape alone, unless a text field has the keyboard: there it ends the
// editing and must not close.
bool isClosingEscape(const QKeyEvent* key) {
    return key->key() == Qt::Key_Escape && significantModifiers(key) == Qt::NoModifier &&
           !isTyping();
}

// A drawing tool's key, alone, outside text fields.
std::optional<AnnotationTool> toolPickedBy(const QKeyEvent* key) {
    if (significantModifiers(key) != Qt::NoModifier || isTyping()) {
        return std::nullopt;
    }
    return annotationToolForKey(key->key());
}

}  // namespace

// The picture drawn scaled into its display rectangle, with the annotation
// canvas over the whole area and a note over it when there is one. The
// canvas takes the mouse only while drawing is on, so the window below it
// stays usable otherwise.
class PreviewImageArea : public QWidget {
public:
    PreviewImageArea(AnnotationState& state, const QString& fileName, QWidget* parent)
        : QWidget(parent),
          canvas_(new AnnotationCanvasView(state, QImage(), this)),
          message_(new QLabel(this)) {
        setAccessibleName(fileName);
        setMinimumSize(1, 1);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        message_->setWordWrap(true);
        message_->setAlignment(Qt::AlignCenter);
        message_->setAttribute(Qt::WA_TransparentForMouseEvents);
        message_->setStyleSheet(QStringLiteral(
            "QLabel { color: white; background: rgba(0, 0, 0, 160); border-radius: 8px; "
            "padding: 8px 12px; }"));
        message_->hide();
        followDrawingEnabled(state.isDrawingEnabled());
        connect(&state, &AnnotationState::drawingEnabledChanged, this,
                [this](bool enabled) { followDrawingEnabled(enabled); });
    }

    AnnotationCanvasView* canvas() const { return canvas_; }
    QRectF displayRect() const { return displayRect_; }
    const QImage& image() const { return image_; }
    QString message() const { return message_->isVisible() ? message_->text() : QString(); }

    // The whole picture and the copy it is drawn from; without that copy, a
    // huge picture gets one made on a worker (the old copy is drawn till
    // then).
    void setImage(const QImage& image, const QImage& display = {}) {
        image_ = image;
        canvas_->setSourceImage(image);
        if (!display.isNull() || image.isNull()) {
            setDisplay(display);
        } else if (std::max(image.width(), image.height()) <= kDisplayMaxSide) {
            setDisplay(image);
        } else {
            const qint64 key = image.cacheKey();
            QtConcurrent::run([image] {
                return displayCopy(image);
            }).then(this, [this, key](const QImage& copy) {
                if (image_.cacheKey() == key) {
                    setDisplay(copy);
                }
            });
        }
        relayout();
    }

    void setMessage(const QString& text) {
        message_->setText(text);
        message_->setAccessibleName(text);
        message_->setVisible(!text.isEmpty());
        placeMessage();
    }

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        relayout();
    }

    void paintEvent(QPaintEvent*) override {
        if (display_.isNull() || displayRect_.isEmpty()) {
            return;
        }
        const qreal ratio = devicePixelRatioF();
        const QSize pixels = (displayRect_.size() * ratio).toSize();
        if (pixels.isEmpty()) {
            return;
        }
        if (scaled_.size() != pixels) {
            scaled_ = QPixmap::fromImage(
                display_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
            scaled_.setDevicePixelRatio(ratio);
        }
        QPainter painter(this);
        painter.drawPixmap(displayRect_.topLeft(), scaled_);
    }

private:
    void setDisplay(const QImage& display) {
        display_ = display;
        scaled_ = QPixmap();
        update();
    }

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
        placeMessage();
        update();
    }

    void placeMessage() {
        if (!message_->isVisible()) {
            return;
        }
        const int margin = static_cast<int>(kPreviewImageMargin);
        const int width = std::max(1, this->width() - 2 * margin);
        const int height = message_->heightForWidth(width);
        message_->setGeometry(margin, margin, width, std::max(height, 1));
        message_->raise();
    }

    AnnotationCanvasView* canvas_;
    QLabel* message_;
    QImage image_;
    QImage display_;
    QPixmap scaled_;
    QRectF displayRect_;
};

ScreenshotPreviewView::ScreenshotPreviewView(const ScreenshotItem& item,
                                             ScreenshotMetadataStore& metaStore,
                                             ScreenshotStore& library, QWidget* parent)
    : QWidget(parent), item_(item), metaStore_(metaStore), library_(library) {
    raiseImageAllocationLimit();
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

    previewSidebar_ = new PreviewSidebar(item_, metaStore_, library_, content_);
    row->addWidget(previewSidebar_);
    connect(&library_, &ScreenshotStore::fileRenamed, this, &ScreenshotPreviewView::followRename);
    connect(&library_, &ScreenshotStore::filesTrashed, this, &ScreenshotPreviewView::followTrash);

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

bool ScreenshotPreviewView::hasUnsavedChanges() const {
    if (item_.isVideo()) {
        return false;
    }
    if (!annotationState_.annotations().isEmpty() || annotationState_.cropRect()) {
        return true;
    }
    const QLineEdit* typing = canvas() ? canvas()->textField() : nullptr;
    return typing && !typing->text().trimmed().isEmpty();
}

QString ScreenshotPreviewView::message() const {
    return imageArea_ ? imageArea_->message() : QString();
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
    QtConcurrent::run([path] {
        return readPicture(path);
    }).then(this, [this](const ReadPicture& picture) {
        takeLoadedImage(picture.image, picture.display, picture.message);
    });
}

void ScreenshotPreviewView::takeLoadedImage(const QImage& image, const QImage& display,
                                            const QString& message) {
    if (!image.isNull()) {
        loadedImage_ = image;
    }
    imageArea_->setImage(image, display);
    if (!fileGone_) {
        imageArea_->setMessage(message);
    }
    loadFinished_ = true;
    Q_EMIT imageLoadFinished();
}

void ScreenshotPreviewView::followRename(const QString& oldPath, const QString& newPath) {
    if (oldPath != item_.path()) {
        return;
    }
    item_ = ScreenshotItem(newPath, item_.date(), item_.modifiedDate(), item_.thumbnail());
    const QFileInfo file(newPath);
    setAccessibleName(QStringLiteral("Preview of %1").arg(file.fileName()));
    if (imageArea_) {
        imageArea_->setAccessibleName(file.fileName());
    }
    previewSidebar_->followRename(newPath);
    if (window() != this) {
        window()->setWindowTitle(file.completeBaseName());
        window()->setAccessibleName(file.fileName());
    }
}

void ScreenshotPreviewView::followTrash(const QStringList& paths) {
    if (fileGone_ || !paths.contains(item_.path())) {
        return;
    }
    fileGone_ = true;
    if (imageArea_) {
        imageArea_->setMessage(QStringLiteral("“%1” was moved to the trash; the annotations "
                                              "cannot be saved there.")
                                   .arg(item_.fileName()));
    }
    Q_EMIT fileTrashed();
}

bool ScreenshotPreviewView::save() {
    if (item_.isVideo() || !loadedImage_ || !imageArea_ || saving_ || fileGone_) {
        return false;
    }
    const QRectF display = imageArea_->displayRect();
    if (display.width() <= 1 || display.height() <= 1) {
        return false;
    }
    // Typed text not yet confirmed is on the screen, so it is saved too.
    canvas()->commitOpenText();
    const QImage image = *loadedImage_;
    const QVector<Annotation> annotations = annotationState_.annotations();
    const std::optional<QRectF> crop = annotationState_.cropRect();
    const QString path = item_.path();
    saving_ = true;
    // Flattened and encoded on a worker; the rewrite keeps an own capture own.
    auto flattened = std::make_shared<QImage>();
    rewriteCapture(
        path,
        [image, annotations, crop, display, flattened] {
            *flattened = flattenOntoPicture(image, annotations, crop, display);
            return encodePng(*flattened);
        },
        this, CaptureRegistry::shared())
        .then(this, [this, flattened](bool written) {
            saving_ = false;
            if (written) {
                takeSavedImage(*flattened);
            } else {
                Q_EMIT saveFailed();
            }
        });
    return true;
}

void ScreenshotPreviewView::takeSavedImage(const QImage& image) {
    loadedImage_ = image;
    imageArea_->setImage(image);
    // Empty the document; tool, colour and drawing switch stay as they are.
    while (!annotationState_.annotations().isEmpty() || annotationState_.cropRect()) {
        annotationState_.undo();
    }
    library_.refresh();
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
    if (target->window() != window() || !isVisible()) {
        return QWidget::eventFilter(watched, event);
    }
    if (const auto tool = toolPickedBy(key); tool && imageArea_) {
        // Taken before any list or button of the window uses the letter.
        if (type == QEvent::KeyPress) {
            annotationState_.selectTool(*tool);
        }
        event->accept();
        return true;
    }
    if (!isCommandKey(key) && !isClosingEscape(key)) {
        return QWidget::eventFilter(watched, event);
    }
    if (type == QEvent::ShortcutOverride) {
        // Keep the keys from any shortcut or field: they arrive as key
        // presses, which are taken below.
        event->accept();
        return true;
    }
    return handleKey(key);
}

bool ScreenshotPreviewView::handleKey(QKeyEvent* key) {
    switch (key->key()) {
        case Qt::Key_S:
            if (!key->isAutoRepeat()) {
                save();
            }
            break;
        case Qt::Key_Z:
            annotationState_.undo();
            break;
        default:
            // Escape and Ctrl+W: the window's own close, which asks first
            // when there is drawing to lose.
            if (!key->isAutoRepeat()) {
                window()->close();
            }
            break;
    }
    return true;
}
