// Foundation's methods that read and write whole files. Device paths go to the device root, and their property
// lists through the kernel's reader; any other path is GNUstep's own affair.
#include "phone/foundation/device_paths.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/property_list_objects.hpp"
#include "phone/foundation/strings.hpp"

namespace phone {

namespace {

using InitWithFile = Replaced<id(id, SEL, id)>;
using WriteToFile = Replaced<unsigned(id, SEL, id, unsigned)>;

InitWithFile g_initDictionary, g_initArray, g_initData;
WriteToFile g_writeDictionary, g_writeArray, g_writeData;
Replaced<unsigned(id, SEL, id)> g_fileExists;

std::string pathOf(id path) { return toString(objc::handle { path }); }

// What an initialiser that fails does: the receiver goes, nil comes.
id fail(id self)
{
    objc::handle { self }.send<"release">();
    return nullptr;
}

// The root of the property list in the file, if it is of that kind.
template <class Kind>
objc::handle readRoot(std::string const& path)
{
    auto const contents = readFile(path);
    if (!contents)
        return {};
    auto const file = readPropertyList(*contents);
    return file && file->root.is<Kind>() ? toObject(file->root) : objc::handle {};
}

id initDictionary(id self, SEL cmd, id path)
{
    std::string const name = pathOf(path);
    if (!isDevicePath(name))
        return g_initDictionary(self, cmd, path);
    AutoreleasePool const pool;
    objc::handle const root = readRoot<PropertyListDictionary>(name);
    return root ? objc::handle { self }.send<"initWithDictionary:", objc::handle>(root).object : fail(self);
}

id initArray(id self, SEL cmd, id path)
{
    std::string const name = pathOf(path);
    if (!isDevicePath(name))
        return g_initArray(self, cmd, path);
    AutoreleasePool const pool;
    objc::handle const root = readRoot<PropertyListArray>(name);
    return root ? objc::handle { self }.send<"initWithArray:", objc::handle>(root).object : fail(self);
}

id initData(id self, SEL cmd, id path)
{
    std::string const name = pathOf(path);
    if (!isDevicePath(name))
        return g_initData(self, cmd, path);
    auto const contents = readFile(name);
    if (!contents)
        return fail(self);
    return objc::handle { self }
        .send<"initWithBytes:length:", objc::handle>(
            static_cast<void const*>(contents->data()), static_cast<NSUInteger>(contents->size()))
        .object;
}

// A container with something in it that no property list holds is not written, as on the platform.
unsigned writeContainer(id self, std::string const& path, bool atomically)
{
    AutoreleasePool const pool;
    auto const list = toPropertyList(objc::handle { self });
    if (!list)
        return false;
    auto const text = writePropertyListXml(*list);
    return text && writeFile(path, text->data(), text->size(), atomically);
}

unsigned writeDictionary(id self, SEL cmd, id path, unsigned atomically)
{
    std::string const name = pathOf(path);
    return isDevicePath(name) ? writeContainer(self, name, objc::is_true(atomically))
                              : g_writeDictionary(self, cmd, path, atomically);
}
unsigned writeArray(id self, SEL cmd, id path, unsigned atomically)
{
    std::string const name = pathOf(path);
    return isDevicePath(name) ? writeContainer(self, name, objc::is_true(atomically))
                              : g_writeArray(self, cmd, path, atomically);
}
unsigned writeData(id self, SEL cmd, id path, unsigned atomically)
{
    std::string const name = pathOf(path);
    if (!isDevicePath(name))
        return g_writeData(self, cmd, path, atomically);
    NSData const data { self };
    return writeFile(name, data.send<"bytes", void const*>(), data.length(), objc::is_true(atomically));
}

unsigned fileExistsAtPath(id self, SEL cmd, id path)
{
    std::string const name = pathOf(path);
    return isDevicePath(name) ? fileExists(name) : g_fileExists(self, cmd, path);
}

}

void replaceFileMethods()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    replace<"initWithContentsOfFile:">("NSDictionary", &initDictionary, g_initDictionary);
    replace<"initWithContentsOfFile:">("NSArray", &initArray, g_initArray);
    replace<"initWithContentsOfFile:">("NSData", &initData, g_initData);
    replace<"writeToFile:atomically:">("NSDictionary", &writeDictionary, g_writeDictionary);
    replace<"writeToFile:atomically:">("NSArray", &writeArray, g_writeArray);
    replace<"writeToFile:atomically:">("NSData", &writeData, g_writeData);
    replace<"fileExistsAtPath:">("NSFileManager", &fileExistsAtPath, g_fileExists);
}

}
