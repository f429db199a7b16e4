// A line of text that tells when the person begins and ends editing it.

#pragma once

#include <QLineEdit>
#include <QString>

class QEvent;
class QValidator;

class TextField : public QLineEdit {
    Q_OBJECT

  public:
    explicit TextField(QWidget* parent = nullptr);

    /// Sets the text without any of the signals below.
    void setStringValue(const QString& text);

    /// The text; empty but never null.
    [[nodiscard]] QString stringValue() const;

    void setEditable(bool editable);
    [[nodiscard]] bool isEditable() const { return !isReadOnly(); }

    /// The field owns the formatter from now on.
    void setFormatter(QValidator* formatter);

  signals:
    /// The person's first change since editing last ended.
    void didBeginEditing();
    void didEndEditing();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void keepPlaceholderReadable();

    bool isBeingEdited_ = false;
};
