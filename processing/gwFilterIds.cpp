#include "processing/gwFilterIds.h"

const QStringList& gwFilterIds()
{
    static const QStringList sIds = {
        "gwACOX", "gwCMSInToWork", "gwCMSWorkToMoni", "gwCMSWorkToOut", "gwCMSWorkToProof",
        "gwCMSProofToWork", "gwDescreening", "gwGamma", "gwGNRX", "gwGradation",
        "gwGradSC2G", "gwNegaTune", "gwRotation", "gwSaturation", "gwScaling",
        "gwSc2g", "gwScc_", "gwUSM", "gwCloneTool", "gwAlignmentMultiExposure",
        "gwAlignmentISDFR", "gwISDFRFilter1_", "gwISDFRFilter2_", "gwISDFRFilter3_", "gwISDFRFilter4_",
        "gwDFR_", "gwMarkErrorsISDFR_", "gwMarkErrorsDFR_", "gwPictureSettings", "gwDensitometer",
        "gwScanDimensions", "gwNavigator", "gwScannerStatus", "gwGradManPip",
    };
    return sIds;
}

const QStringList& gwFilterDisplayNames()
{
    // "Elemination" is the text the suite shows.
    static const QStringList sNames = {
        "NegaTune", "Gradation", "Histogram", "Global Color Correction", "Neutral Pipette",
        "Selective Color To Gray", "Selective Color Correction", "Unsharp Masking", "Descreening", "Clone-Tool",
        "Auto Adaptive Contrast Optimisation", "Picture settings", "DFRx - Dust and Scratch Removal",
        "iDFR - Dust and Scratch Removal", "Grain and Noise Elemination", "Scanner Status",
        "WorkflowGuide Assistant", "JobManager", "Extract & Apply", "Image Dimensions", "Scan Dimensions",
    };
    return sNames;
}
