#pragma once

#include "processing/gwFilterInterfaceBase.h"

class CgwFilterGamma;

// The user-interface side of the gamma filter: controls send their values
// through slotSetParams, the filter's values come back through the signals.
class CgwFilterInterfaceGamma : public CgwFilterInterfaceBase
{
    Q_OBJECT

public:
    explicit CgwFilterInterfaceGamma(CgwFilterGamma* filter);
    ~CgwFilterInterfaceGamma() override;

    void updateFromFilter() override;
    // The input bitmap's gamma as the run found it, as "%.2f".
    void sendBitmapGamma(const QString& text);

signals:
    void signalShowSettings();
    void signalHideSettings();
    void signalSetGammaIn(double gamma);
    void signalSetGammaOut(double gamma);
    void signalUseInBmpGamma(bool use);
    void signalInBmpGammaToGUI(const QString& text);

public slots:
    void slotSetDefaultValues();
    void slotShowSettings(bool show);
    void slotChooseBmpGamma(bool use);
    void slotGammaInChanged(double gamma);
    void slotGammaOutChanged(double gamma);

private:
    CgwFilterGamma* gammaFilter() const;
    void sendOne(const QString& key, const CgwQString& value);
};
