#pragma once

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QSize>
#include <QWidget>

#include <memory>

class PictureFlowAnimator;
class PictureFlowState;

/**
 * An animated strip of slides: the centre one stands flat, six on each side are turned away, each with its
 * reflection below. Keys, presses or showNext() and showPrevious() turn the strip one slide at a time.
 *
 * Slides are numbered from 0. An index outside the list is clamped where the strip is moved and ignored where
 * an image is set; slide() gives a null image for it. An empty list shows the bare ground.
 */
class PictureFlow : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor)
    Q_PROPERTY(QSize slideSize READ slideSize WRITE setSlideSize)
    Q_PROPERTY(int slideCount READ slideCount)
    Q_PROPERTY(int centerIndex READ centerIndex WRITE setCenterIndex)

public:
    enum ReflectionEffect {
        NoReflection = 0,
        MirrorReflection = 1, ///< an even mirror image
        FadingReflection = 2, ///< a mirror image that fades to the ground
        SoftReflection = 3, ///< fades, and grows softer with the distance from the slide
    };

    explicit PictureFlow(QWidget* parent = nullptr);
    ~PictureFlow() override;

    int slideCount() const;
    QSize slideSize() const;
    void setSlideSize(QSize size);
    ReflectionEffect reflectionEffect() const;
    void setReflectionEffect(ReflectionEffect effect);
    QColor backgroundColor() const;
    void setBackgroundColor(QColor color);
    QImage slide(int index) const;
    int centerIndex() const;
    int GetFocusIndex() const { return focusIndex; }

    /** Adds a slide with an image of the program's own, which is decoded when it is first seen or asked for.
     */
    void addResourceSlide(const QString& path);

    /** Where the strip stands and how it moves at this moment. */
    const PictureFlowState& state() const;
    const PictureFlowAnimator& animator() const;

    /**
     * The slide that the user has turned to. It runs ahead of the centre while the strip moves, and by
     * turning on at either end it may leave the list. Whoever moves the strip by setCenterIndex() sets it
     * too.
     */
    int focusIndex = 0;

public slots:
    void addSlide(QImage image);
    void addSlide(QPixmap pixmap);
    void setSlide(int index, QImage image);
    void setSlide(int index, QPixmap pixmap);
    void setCenterIndex(int index);
    void clear();
    void showPrevious();
    void showNext();
    void showSlide(int index);
    void render();
    void triggerRender();
    void updateAnimation();

signals:
    void centerIndexChanged(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int clampedIndex(int index) const;
    void turnTo(int index);

    struct Private;
    std::unique_ptr<Private> d;
};
