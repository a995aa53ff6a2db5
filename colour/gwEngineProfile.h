#pragma once

#include "colour/gwProfileHeader.h"

#include <QByteArray>
#include <QMutex>
#include <QString>

#include <memory>

// One open profile of the colour engine (Little CMS 2), offering what the
// profile classes ask of an engine: open a profile for reading from a file
// or from memory, or create a writable one in memory; test validity; get and
// set the header; size, read and write tagged elements as the raw big-endian
// bytes of the file; serialise. Closing is destruction: profiles hold one
// through std::shared_ptr, so that copies share it and the last one closes.
//
// The engine's objects must not be used by two threads at a time, so each
// object has an engine context of its own and serialises its calls.
class CgwEngineProfile
{
public:
    // Null on failure; `error` then says why.
    static std::shared_ptr<CgwEngineProfile> openFile(const QString& path, QString* error = nullptr);
    static std::shared_ptr<CgwEngineProfile> openMemory(const QByteArray& bytes, QString* error = nullptr);
    static std::shared_ptr<CgwEngineProfile> createWritable(QString* error = nullptr);

    ~CgwEngineProfile();
    CgwEngineProfile(const CgwEngineProfile&) = delete;
    CgwEngineProfile& operator=(const CgwEngineProfile&) = delete;

    bool isWritable() const { return mWritable; }
    // The engine can build a transform with the profile: from it into Lab or
    // from Lab into it, or for a device link through it alone. A writable
    // profile is judged by its serialised form, as a reader will see it.
    bool isValid() const;

    SgwProfileHeader header() const;
    // Writable profiles only.
    bool setHeader(const SgwProfileHeader& header);

    // 0 when the profile has no such element.
    quint32 elementSize(quint32 tag) const;
    QByteArray element(quint32 tag) const;
    // Writable profiles only: an element is sized first, which fills it with
    // zeros, and then written in place; a write must fit inside it.
    bool setElementSize(quint32 tag, quint32 size);
    bool setElement(quint32 tag, quint32 offset, const QByteArray& bytes);

    // The whole profile as a file holds it, carrying the header as it was
    // read or set here; empty on failure.
    QByteArray toBytes() const;

private:
    struct Engine;

    explicit CgwEngineProfile(bool writable);
    // Opens the engine's profile in the candidate's context; the candidate,
    // or null with the engine's reason.
    template <typename Open>
    static std::shared_ptr<CgwEngineProfile> attach(std::shared_ptr<CgwEngineProfile> candidate, Open open,
                                                    QString* error);
    QByteArray serialise() const;
    QByteArray readElement(quint32 tag) const;
    bool writeElement(quint32 tag, const QByteArray& bytes);

    const bool mWritable;
    SgwProfileHeader mHeader;
    std::unique_ptr<Engine> mEngine;
    mutable QMutex mMutex;
};
