import QtQuick
import QtWebEngine

// The page of an artifact. It may run its own script and nothing else: it goes nowhere, opens nothing, asks nothing.
WebEngineView {
    id: view

    required property url page

    backgroundColor: "white"
    focus: true
    settings.accelerated2dCanvasEnabled: false
    settings.allowGeolocationOnInsecureOrigins: false
    settings.allowRunningInsecureContent: false
    settings.allowWindowActivationFromJavaScript: false
    settings.autoLoadIconsForPage: false
    settings.dnsPrefetchEnabled: false
    settings.errorPageEnabled: false
    settings.fullScreenSupportEnabled: false
    settings.hyperlinkAuditingEnabled: false
    settings.javascriptCanAccessClipboard: false
    settings.javascriptCanOpenWindows: false
    settings.javascriptCanPaste: false
    settings.localContentCanAccessFileUrls: false
    settings.localContentCanAccessRemoteUrls: false
    settings.localStorageEnabled: false
    settings.pdfViewerEnabled: false
    settings.pluginsEnabled: false
    settings.screenCaptureEnabled: false
    settings.webGLEnabled: false
    settings.webRTCPublicInterfacesOnly: true
    url: page

    onAuthenticationDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onCertificateError: error => error.rejectCertificate()
    onColorDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onContextMenuRequested: request => request.accepted = true
    onFeaturePermissionRequested: (origin, feature) => view.grantFeaturePermission(origin, feature, false)
    onFileDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onFileSystemAccessRequested: request => request.reject()
    onJavaScriptConsoleMessage: () => {} // nothing of it goes into a log
    onJavaScriptDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onNavigationRequested: request => {
        if (request.url.toString() !== page.toString() && request.url.toString() !== "about:srcdoc")
            request.reject()
    }
    onNewWindowRequested: () => {} // and so there is none
    onQuotaRequested: request => request.reject()
    onRegisterProtocolHandlerRequested: request => request.reject()
    onTooltipRequested: request => request.accepted = true
}
