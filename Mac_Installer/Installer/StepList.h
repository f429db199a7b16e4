// The list of steps beside the pages, with the completed steps ticked and the current one highlighted. It
// can't be clicked, as the pages control the navigation. Screen readers read it as text.

#pragma once

#include <QFrame>
#include <QString>

#include <vector>

class QLabel;
class QVBoxLayout;
class StepMark;

class StepList : public QFrame {
    Q_OBJECT

  public:
    explicit StepList(QWidget* parent = nullptr);

    void addStep(const QString& title);

    /// `step` counts from 0.
    void setCurrentStep(int step);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Step {
        StepMark* mark;
        QLabel* label;
    };

    QVBoxLayout* column_;
    QLabel* banner_;
    std::vector<Step> steps_;  // children
};
