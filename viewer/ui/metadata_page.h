#pragma once
#include "metadata/catalogue.h"
#include "platform/ui_loop.h"
#include "viewer/general_tags.h"
#include "viewer/load_road.h"
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeWidget>

namespace quillane {

/// The page "Photo Information/Metadata": the description's text (Frame1, txtTags) and the five
/// tabs of SSTab2.
class MetadataPage : public QWidget {
    Q_OBJECT
public:
    explicit MetadataPage(QWidget* parent = nullptr);

    /// Empties text and boxes and switches all tabs but the first off.
    void Empty();
    /// Fills everything from a file that was loaded, or could not be.
    void Fill(const ViewedFile& viewed, const UiLoop& loop);

    bool TagsRead() const { return mTagsRead; }       ///< txtTags was filled from the file
    bool GeneralRead() const { return mGeneralRead; } ///< the boxes were filled from the file
    QString Tags() const;                             ///< text of txtTags; lines end in CR LF
    GeneralTagTexts General() const;                  ///< texts of the boxes
    void SetDateCreated(const QString& date);         ///< text of txtDateCreated
    /// Whether text or boxes were changed since they were filled or last counted as saved.
    bool IsChanged() const;
    void CountAsSaved(); ///< see IsChanged
    /// While it is on nothing can be typed.
    void SetReadOnly(bool on);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void BuildGeneral();
    QTreeWidget* AddList(const char* name, const QString& caption, const CatalogueColumns& columns);
    QLineEdit* Box(const char* name) const;
    QString AllTexts() const;

    QSplitter* mHalves;
    QGroupBox* Frame1;
    QPlainTextEdit* txtTags;
    QTabWidget* SSTab2;
    QTreeWidget* lvImageInfo = nullptr;
    QTreeWidget* lvCamera = nullptr;
    QTreeWidget* lvGPS = nullptr;
    QTreeWidget* lvDICOM = nullptr;
    QList<QLineEdit*> mBoxes;
    QString mSaved; ///< AllTexts when it last was that of the file
    bool mTagsRead = false;
    bool mGeneralRead = false;
};

} // namespace quillane
