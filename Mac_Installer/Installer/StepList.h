// The list of steps beside the pages, with the completed steps ticked and the current one highlighted. It
// can't be clicked, as the pages control the navigation. Screen readers read it as text.

#pragma once

#include <QFrame>
#include <QList>

#include <vector>

class InstallerPane;
class QLabel;

class StepList : public QFrame {
    Q_OBJECT

  public:
    explicit StepList(const std::vector<InstallerPane*>& pages, QWidget* parent = nullptr);

    /// `current` counts from 0.
    void setCurrentStep(int current);

  private:
    QList<QLabel*> marks_;
    QList<QLabel*> labels_;
};
