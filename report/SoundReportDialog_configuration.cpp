#include "report/SoundReportDialog.h"

#include "app/look/Named.h"
#include "app/settings/ConfigManager.h"
#include "report/ChosenFile.h"
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

#include <algorithm>
#include <array>

namespace {

constexpr int kPreviewWidth = 150; // Pixels.
constexpr int kPreviewHeight = 75;

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

QLineEdit* makeEdit(const ReportField& field, const ReportSettings& settings)
{
    auto* edit = named(field.editName, new QLineEdit(QString::fromStdString(settings.*field.value)));
    return edit;
}

QComboBox* addFormatRow(QFormLayout& form, int format)
{
    auto* combo = named("outputFormatCombo", new QComboBox);
    int value = 0;
    for (const ReportFormat& each : kReportFormats)
        combo->addItem(QLatin1String(each.title), value++);
    combo->setCurrentIndex(format);
    form.addRow(QStringLiteral("Output Format:"), combo);
    return combo;
}

QLabel* makePreview(const QString& path)
{
    auto* preview = named("logoPreview", new QLabel);
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
    const QString chosen = chosenFile(chooser);
    if (chosen.isEmpty())
        return;
    logoEdit.setText(chosen);
    showPicture(preview, chosen);
}

void addLogoRows(QFormLayout& form, const char* title, QLineEdit* logoEdit, const QString& storedPath)
{
    logoEdit->setReadOnly(true);
    logoEdit->setPlaceholderText(QStringLiteral("No logo selected"));
    auto* browse = named("browseLogoButton", new QPushButton(QStringLiteral("Browse...")));
    auto* clear = named("clearLogoButton", new QPushButton(QStringLiteral("Clear")));
    QLabel* preview = makePreview(storedPath);

    auto* row = new QHBoxLayout;
    row->addWidget(logoEdit, 1);
    row->addWidget(browse);
    row->addWidget(clear);
    auto* caption = new QLabel(QLatin1String(title));
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
}

QHBoxLayout* makeButtonRow(QDialog& dialog)
{
    auto* ok = named("okButton", new QPushButton(QStringLiteral("OK")));
    // Return in a text field accepts; it would open the logo's file dialog otherwise.
    ok->setDefault(true);
    auto* cancel = named("cancelButton", new QPushButton(QStringLiteral("Cancel")));
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
    settings = loadReportSettings(ConfigManager::getInstance());
}

void SoundReportDialog::saveProductionInfo()
{
    ConfigManager& config = ConfigManager::getInstance();
    storeReportSettings(settings, config);
    // A failed save stays without a word: the values hold for this run, and the next change tries again.
    (void)config.saveConfig("");
}

void SoundReportDialog::onConfigure()
{
    QDialog dialog(this);
    named("configurationDialog", &dialog);
    dialog.setWindowTitle(QStringLiteral("Sound Report Configuration"));
    dialog.setMinimumWidth(500);
    auto* layout = new QVBoxLayout(&dialog);
    auto* form = new QFormLayout;
    layout->addLayout(form);

    std::array<QLineEdit*, kReportFields.size()> edits{};
    std::transform(kReportFields.begin(), kReportFields.end(), edits.begin(),
        [this](const ReportField& field) { return makeEdit(field, settings); });
    for (size_t i = 0; i + 1 < edits.size(); ++i)
        form->addRow(QLatin1String(kReportFields[i].caption), edits[i]);
    QComboBox* formatCombo = addFormatRow(*form, settings.outputFormat);
    addLogoRows(*form, kReportFields.back().caption, edits.back(), QString::fromStdString(settings.companyLogoPath));
    layout->addLayout(makeButtonRow(dialog));

    if (dialog.exec() != QDialog::Accepted)
        return;
    for (size_t i = 0; i < edits.size(); ++i)
        settings.*kReportFields[i].value = edits[i]->text().toStdString();
    settings.outputFormat = formatCombo->currentIndex();
    saveProductionInfo();
}
