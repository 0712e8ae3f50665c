// Files in memory, in place of the operating system's: while a MemoryFiles object lives, the
// program's calls that open, read, write, rename and delete files see its one source and
// the outputs of the run.
#pragma once

#include <map>
#include <string>
#include <string_view>

class MemoryFiles {
  public:
    MemoryFiles(std::string_view source_name, std::string_view source);
    ~MemoryFiles();
    MemoryFiles(const MemoryFiles &) = delete;
    MemoryFiles &operator=(const MemoryFiles &) = delete;

    // The content of an output, or null if there is no such file.
    const std::string *output(const std::string &name) const;

    // What went to standard output.
    const std::string &printed() const { return printed_; }

    // The calls.
    int open_file(const char *path, int flags);
    long read_file(int descriptor, void *buffer, std::size_t size);
    long write_file(int descriptor, const void *buffer, std::size_t size);
    bool owns(int descriptor) const { return descriptor >= kFirstDescriptor; }
    void unlink_file(const char *path) { outputs_.erase(path); }
    int rename_file(const char *from, const char *to);
    std::size_t source_size() const { return source_.size(); }

  private:
    static constexpr int kSourceDescriptor = 1000;
    static constexpr int kFirstDescriptor = kSourceDescriptor;

    std::string_view source_name_;
    std::string_view source_;
    std::size_t position_ = 0;
    std::string printed_;
    std::map<std::string, std::string> outputs_;
    std::map<int, std::string> open_outputs_;
};
