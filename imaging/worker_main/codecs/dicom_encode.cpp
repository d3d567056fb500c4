#include "core/failure.h"
#include "imaging/worker_main/codecs/dicom_fields.h"
#include "imaging/worker_main/codecs/dicom_file.h"
#include "imaging/worker_main/codecs/dicom_output.h"
#include "imaging/worker_main/codecs/dicom_pixels.h"
#include "imaging/worker_main/codecs/shipped_codecs.h"
#include <QUuid>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcuid.h>

namespace quillane::worker {

namespace {

/// An identifier nobody else has: 2.25. and a random UUID as one decimal number (DICOM PS3.5, B.2).
QByteArray NewDicomUid()
{
    QByteArray number = QUuid::createUuid().toRfc4122();
    QByteArray digits;
    // Long division by ten of a number of 128 bits.
    for (bool left = true; left;) {
        unsigned rest = 0;
        left = false;
        for (char& byte : number) {
            const unsigned value = rest << 8 | uchar(byte);
            byte = char(value / 10);
            rest = value % 10;
            left = left || byte != 0;
        }
        digits.prepend(char('0' + rest));
    }
    return "2.25." + digits;
}

void PutNew(DcmDataset& dataset, const DcmTagKey& tag, const QByteArray& value)
{
    if (dataset.putAndInsertString(DcmTag(tag), value.constData()).bad()) {
        throw std::bad_alloc();
    }
}

/// What a file of its own has to have (DICOM PS3.3, A.8.1), most of it unknown.
void BeginDicom(DcmDataset& dataset)
{
    PutNew(dataset, DCM_SOPClassUID, UID_SecondaryCaptureImageStorage);
    for (const DcmTagKey& tag : {DCM_SOPInstanceUID, DCM_StudyInstanceUID, DCM_SeriesInstanceUID}) {
        PutNew(dataset, tag, NewDicomUid());
    }
    for (const DcmTagKey& tag :
         {DCM_StudyDate, DCM_StudyTime, DCM_AccessionNumber, DCM_ReferringPhysicianName,
          DCM_PatientName, DCM_PatientID, DCM_PatientBirthDate, DCM_PatientSex, DCM_StudyID,
          DCM_SeriesNumber, DCM_InstanceNumber}) {
        PutNew(dataset, tag, {});
    }
    PutNew(dataset, DCM_SpecificCharacterSet, "ISO_IR 192");
    PutNew(dataset, DCM_Modality, "OT");
    PutNew(dataset, DCM_ConversionType, "WSD");
}

/// Points to an inch of something flat, as spacing in millimetres.
void PutDicomResolution(DcmDataset& dataset, const EncodeWish& wish)
{
    constexpr double kMillimetresPerInch = 25.4;
    if (wish.xResolution > 0 && wish.yResolution > 0) {
        PutNew(dataset, DCM_NominalScannedPixelSpacing,
               QByteArray::number(kMillimetresPerInch / wish.yResolution, 'f', 8) + '\\'
                   + QByteArray::number(kMillimetresPerInch / wish.xResolution, 'f', 8));
    }
}

void WriteDicom(DcmFileFormat& document, E_TransferSyntax syntax, bool isNew, FileSink& file)
{
    DicomOutput output(file);
    document.transferInit();
    const OFCondition written =
        document.write(output, syntax, EET_UndefinedLength, nullptr, EGL_recalcGL, EPD_noChange, 0,
                       0, 0, isNew ? EWM_createNewMeta : EWM_updateMeta);
    document.transferEnd();
    output.Rethrow();
    if (written.bad()) {
        throw Failure(kFailureGeneral,
                      QStringLiteral("The DICOM file cannot be written: %1.")
                          .arg(QString::fromLatin1(written.text())));
    }
}

/// The transfer syntax for new pixels of a file: what it has stays where the code says no more.
void KeepSyntax(E_TransferSyntax original, DicomVariant& variant)
{
    if (!DcmXfer(variant.syntax).isEncapsulated() && !DcmXfer(original).isEncapsulated()
        && original != EXS_Unknown) {
        variant.syntax = original;
    }
}

} // namespace

void EncodeDicom(PictureRows& picture, const EncodeWish& wish, FileSink& file)
{
    const PictureShape& shape = picture.Shape();
    if (!wish.original) {
        const DicomVariant variant = ChooseDicomVariant(shape, wish);
        DcmFileFormat document;
        BeginDicom(*document.getDataset());
        PutDicomResolution(*document.getDataset(), wish);
        PutDicomPixels(*document.getDataset(), picture, variant, wish.quality);
        ChangeDicomFields(*document.getDataset(), wish.texts);
        WriteDicom(document, variant.syntax, true, file);
        return;
    }
    DicomFile original(*wish.original, DicomPart::Whole);
    DcmDataset& dataset = original.Dataset();
    E_TransferSyntax syntax = dataset.getOriginalXfer();
    if (shape.width > 0) {
        const qint32 frames = original.Facts().facts.pages;
        if (frames > 1) {
            throw Failure(kFailureGeneral,
                          QStringLiteral("This DICOM file has %1 pictures, and one of them alone "
                                         "cannot be changed. Save it under another name.")
                              .arg(frames));
        }
        DicomVariant variant = ChooseDicomVariant(shape, wish);
        KeepSyntax(syntax, variant);
        PutDicomPixels(dataset, picture, variant, wish.quality);
        syntax = variant.syntax;
    }
    ChangeDicomFields(dataset, wish.texts);
    WriteDicom(original.Document(), syntax, false, file);
}

} // namespace quillane::worker
