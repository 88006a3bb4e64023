#!/bin/sh
# Whether the built programs and libraries are guarded as Debian's are: binaries.sh FILE... The compiler leaves a guarded
# stack, checked calls and marked jumps only where there is something to guard, so those are asked of all files together.
set -eu

failed=0
miss() { # file what
    echo "$1: $2" >&2
    failed=1
}

wants() { # file what pattern, in what readelf tells
    printf '%s' "$told" | grep -q "$3" || miss "$1" "$2"
}

guards=
for file in "$@"; do
    told=$(readelf -hldW "$file")
    wants "$file" "not position-independent" 'Type: *DYN'
    wants "$file" "nothing is sealed after loading" GNU_RELRO
    wants "$file" "not every address is bound before it starts" 'BIND_NOW\|Flags:.*NOW'
    wants "$file" "its stack can be executed" 'GNU_STACK.* RW '
    case $(readelf -dW "$file" | sed -n 's/.*R.*PATH.*\[\(.*\)\]/:\1:/p') in
    *::* | *:.:* | *:./*) miss "$file" "the loader looks for libraries in the working folder" ;;
    esac
    case $(readelf -lW "$file") in *' RWE '*) miss "$file" "a part of it can be written and executed" ;; esac
    guards="$guards $(readelf --dyn-syms -W "$file" | grep -o '__stack_chk_fail\|__[a-z]*_chk' | sort -u | tr '\n' ' ')"
    case $(uname -m) in
    x86_64) objdump -d --no-show-raw-insn "$file" | grep -q endbr64 || miss "$file" "its jumps are not marked" ;;
    esac
done
case $guards in *__stack_chk_fail*) ;; *) miss "all files" "no stack is guarded" ;; esac
case $guards in *printf_chk*) ;; *) miss "all files" "no call is checked" ;; esac
exit $failed
