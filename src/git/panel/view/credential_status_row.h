// Which credentials for git this machine has, at a glance.
#pragma once

#include "git/service/credential_detection.h"

#include <QWidget>

namespace kelm {

class TextLabel;
class WrappedLabel;

/// A small capsule with a check mark when what it names is there, and an empty circle when it is not.
class CredentialChip final : public QWidget
{
    Q_OBJECT

public:
    explicit CredentialChip(const QString& label, QWidget* parent = nullptr);

    void setPresent(bool isPresent);
    bool isPresent() const { return isPresent_; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label_;
    bool isPresent_ = false;
};

/// Three chips, and below them what the user may expect. It looks when it appears.
class CredentialStatusRow final : public QWidget
{
    Q_OBJECT

public:
    explicit CredentialStatusRow(QWidget* parent = nullptr);

    bool hasSSHKey() const { return status_.hasSSHKey; }
    bool hasGitHubCLI() const { return status_.hasGitHubCLI; }
    bool hasGitCredentialHelper() const { return status_.hasGitCredentialHelper; }
    QString hint() const { return status_.hint(); }

    /// Looks for what the machine has, in the user's home folder and elsewhere.
    void detect();
    void setStatus(const CredentialStatus& status);

protected:
    void showEvent(QShowEvent* event) override;

private:
    CredentialStatus status_;
    CredentialChip* sshKey_;
    CredentialChip* gitHubCLI_;
    CredentialChip* credentialHelper_;
    WrappedLabel* hint_;
};

} // namespace kelm
