// Elements: an array's objects for C++'s range loops; GCC's Objective-C++ has no fast enumeration.
#pragma once

#import <Foundation/Foundation.h>

namespace discrecording {

/// The array must not change, and must live, while it is walked.
template <typename Object = id>
class Elements {
  public:
    explicit Elements(NSArray* array) : array_(array), count_([array count]) {}

    class Iterator {
      public:
        Iterator(NSArray* array, NSUInteger index) : array_(array), index_(index) {}
        Object operator*() const { return static_cast<Object>([array_ objectAtIndex:index_]); }
        Iterator& operator++() {
            ++index_;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return index_ != other.index_; }

      private:
        NSArray* array_;
        NSUInteger index_;
    };

    Iterator begin() const { return {array_, 0}; }
    Iterator end() const { return {array_, count_}; }

  private:
    NSArray* array_;
    NSUInteger count_;
};

} // namespace discrecording
