#include "report/SoundReportDialog.h"

#include "app/settings/ConfigManager.h"
#include "report/PictureFile.h"

#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace {

constexpr int kPreviewWidth = 150; // Pixels.
constexpr int kPreviewHeight = 75;
const char* const kFormatKey = "soundreport.outputFormat";

// Item i stands for output format i.
constexpr std::array<const char*, 3> kFormatTitles{ "PDF (Sound Report)", "CSV", "ALE (Avid Log Exchange)" };

QString noLogo()
{
    return QStringLiteral("No logo");
}

void showPicture(QLabel& preview, const QString& path)
{
    const QPixmap picture = QPixmap::fromImage(loadPicture(path));
    if (picture.isNull())
        preview.setText(QStringLiteral("Invalid image"));
    else
        preview.setPixmap(picture.scaled(kPreviewWidth, kPreviewHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

QLineEdit* addTextRow(QFormLayout& form, const char* caption, const char* name, const std::string& value)
{
    auto* edit = new QLineEdit(QString::fromStdString(value));
    edit->setObjectName(name);
    form.addRow(QLatin1String(caption), edit);
    return edit;
}

QComboBox* addFormatRow(QFormLayout& form, int format)
{
    auto* combo = new QComboBox;
    combo->setObjectName("outputFormatCombo");
    int value = 0;
    for (const char* title : kFormatTitles)
        combo->addItem(QLatin1String(title), value++);
    combo->setCurrentIndex(format);
    form.addRow(QStringLiteral("Output Format:"), combo);
    return combo;
}

QLabel* makePreview(const QString& path)
{
    auto* preview = new QLabel;
    preview->setObjectName("logoPreview");
    preview->setFixedSize(kPreviewWidth, kPreviewHeight);
    preview->setAlignment(Qt::AlignCenter);
    preview->setStyleSheet(QStringLiteral("QLabel { border: 1px solid #ccc; background: #f5f5f5; }"));
    if (path.isEmpty())
        preview->setText(noLogo());
    else
        showPicture(*preview, path);
    return preview;
}

// The browser starts at the stored path, not at the one that stands in the field. An unusable file is not refused.
void browseForLogo(const QString& storedPath, QLineEdit& logoEdit, QLabel& preview)
{
    QFileDialog chooser(nullptr, QStringLiteral("Select Company Logo"), storedPath,
        QStringLiteral("Images (*.png *.jpg *.jpeg *.bmp *.gif)"));
    chooser.setFileMode(QFileDialog::ExistingFile);
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    if (chooser.exec() != QDialog::Accepted)
        return;
    const QStringList chosen = chooser.selectedFiles();
    if (chosen.isEmpty())
        return;
    logoEdit.setText(chosen.first());
    showPicture(preview, chosen.first());
}

QLineEdit* addLogoRows(QFormLayout& form, const QString& storedPath)
{
    auto* logoEdit = new QLineEdit(storedPath);
    logoEdit->setObjectName("companyLogoEdit");
    logoEdit->setReadOnly(true);
    logoEdit->setPlaceholderText(QStringLiteral("No logo selected"));
    auto* browse = new QPushButton(QStringLiteral("Browse..."));
    browse->setObjectName("browseLogoButton");
    auto* clear = new QPushButton(QStringLiteral("Clear"));
    clear->setObjectName("clearLogoButton");
    QLabel* preview = makePreview(storedPath);

    auto* row = new QHBoxLayout;
    row->addWidget(logoEdit, 1);
    row->addWidget(browse);
    row->addWidget(clear);
    auto* caption = new QLabel(QStringLiteral("Company Logo:"));
    caption->setBuddy(logoEdit);
    form.addRow(caption, row);
    form.addRow(QString(), preview);

    QObject::connect(browse, &QPushButton::clicked, logoEdit,
        [storedPath, logoEdit, preview] { browseForLogo(storedPath, *logoEdit, *preview); });
    QObject::connect(clear, &QPushButton::clicked, logoEdit, [logoEdit, preview] {
        logoEdit->clear();
        preview->clear();
        preview->setText(noLogo());
    });
    return logoEdit;
}

QHBoxLayout* makeButtonRow(QDialog& dialog)
{
    auto* ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName("okButton");
    // Return in a text field accepts; it would open the logo's file dialog otherwise.
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setObjectName("cancelButton");
    QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(ok);
    row->addWidget(cancel);
    return row;
}

} // namespace

void SoundReportDialog::loadProductionInfo()
{
    const ConfigManager& settings = ConfigManager::getInstance();
    productionCompany = settings.getString("soundreport.productionCompany", "");
    projectName = settings.getString("soundreport.projectName", "");
    director = settings.getString("soundreport.director", "");
    soundMixer = settings.getString("soundreport.soundMixer", "");
    mixerPhone = settings.getString("soundreport.mixerPhone", "");
    mixerEmail = settings.getString("soundreport.mixerEmail", "");
    companyLogoPath = settings.getString("soundreport.companyLogoPath", "");
    outputFormat = settings.getInt(kFormatKey, 0);
}

void SoundReportDialog::saveProductionInfo()
{
    ConfigManager& settings = ConfigManager::getInstance();
    settings.setString("soundreport.productionCompany", productionCompany);
    settings.setString("soundreport.projectName", projectName);
    settings.setString("soundreport.director", director);
    settings.setString("soundreport.soundMixer", soundMixer);
    settings.setString("soundreport.mixerPhone", mixerPhone);
    settings.setString("soundreport.mixerEmail", mixerEmail);
    settings.setString("soundreport.companyLogoPath", companyLogoPath);
    settings.setInt(kFormatKey, outputFormat);
    // A failed save stays without a word: the values hold for this run, and the next change tries again.
    (void)settings.saveConfig("");
}

void SoundReportDialog::onConfigure()
{
    QDialog dialog(this);
    dialog.setObjectName("configurationDialog");
    dialog.setWindowTitle(QStringLiteral("Sound Report Configuration"));
    dialog.setMinimumWidth(500);
    auto* layout = new QVBoxLayout(&dialog);
    auto* form = new QFormLayout;
    layout->addLayout(form);

    struct TextRow {
        const char* caption;
        const char* name;
        std::string& value;
        QLineEdit* edit;
    };
    std::array<TextRow, 6> rows{ {
        { "Production Company:", "productionCompanyEdit", productionCompany, nullptr },
        { "Project/Show Name:", "projectNameEdit", projectName, nullptr },
        { "Director:", "directorEdit", director, nullptr },
        { "Sound Mixer:", "soundMixerEdit", soundMixer, nullptr },
        { "Mixer Phone:", "mixerPhoneEdit", mixerPhone, nullptr },
        { "Mixer Email:", "mixerEmailEdit", mixerEmail, nullptr },
    } };
    for (TextRow& row : rows)
        row.edit = addTextRow(*form, row.caption, row.name, row.value);
    QComboBox* formatCombo = addFormatRow(*form, outputFormat);
    QLineEdit* logoEdit = addLogoRows(*form, QString::fromStdString(companyLogoPath));
    layout->addLayout(makeButtonRow(dialog));

    if (dialog.exec() != QDialog::Accepted)
        return;
    for (const TextRow& row : rows)
        row.value = row.edit->text().toStdString();
    companyLogoPath = logoEdit->text().toStdString();
    outputFormat = formatCombo->currentIndex();
    saveProductionInfo();
}
