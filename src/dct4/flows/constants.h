// SPDX-License-Identifier: MIT
// The fixed angles of the kernels: rational multiples of pi with a power of two up to 128 below the
// line.
#pragma once

namespace orvgen::dct4 {

// F(j, cos(j pi / 128)), the cosine to 40 digits, so that either type gets it with one rounding.
#define ORVGEN_DCT4_COSINES(F)                         \
    F(0, 1.0)                                          \
    F(1, 0.9996988186962042201157656496661721968501)   \
    F(2, 0.9987954562051723927147716047591006944432)   \
    F(3, 0.9972904566786902161355971401825678211717)   \
    F(4, 0.9951847266721968862448369531094799215755)   \
    F(5, 0.9924795345987099981567672516611178200108)   \
    F(6, 0.9891765099647809734516737380162430639837)   \
    F(7, 0.9852776423889412447740184331785477871601)   \
    F(8, 0.9807852804032304491261822361342390369739)   \
    F(9, 0.9757021300385285444603957664195279716440)   \
    F(10, 0.9700312531945439926039842072861002514569)  \
    F(11, 0.9637760657954398666864643555078351536631)  \
    F(12, 0.9569403357322088649357978869802699694828)  \
    F(13, 0.9495281805930366671959360741893450282522)  \
    F(14, 0.9415440651830207784125094025995023571856)  \
    F(15, 0.9329927988347388877116602555433024982950)  \
    F(16, 0.9238795325112867561281831893967882868224)  \
    F(17, 0.9142097557035306546350148293935774010447)  \
    F(18, 0.9039892931234433315862002972305370487101)  \
    F(19, 0.8932243011955153203424164474933979780006)  \
    F(20, 0.8819212643483550297127568636603883495084)  \
    F(21, 0.8700869911087114186522924044838488439108)  \
    F(22, 0.8577286100002720699022699842847701370425)  \
    F(23, 0.8448535652497070732595712051049570977198)  \
    F(24, 0.8314696123025452370787883776179057567386)  \
    F(25, 0.8175848131515836965049208841306338094710)  \
    F(26, 0.8032075314806449098066765129631419238796)  \
    F(27, 0.7883464276266062620091647053596892826565)  \
    F(28, 0.7730104533627369608109066097584698009710)  \
    F(29, 0.7572088465064845475754640536057844730404)  \
    F(30, 0.7409511253549590911756168974951627297290)  \
    F(31, 0.7242470829514669209410692432905531674831)  \
    F(32, 0.7071067811865475244008443621048490392848)  \
    F(33, 0.6895405447370669246167306299574847028455)  \
    F(34, 0.6715589548470184006253768504274218032288)  \
    F(35, 0.6531728429537767640842030136563054150769)  \
    F(36, 0.6343932841636454982151716132254933706757)  \
    F(37, 0.6152315905806268454849135634139842776594)  \
    F(38, 0.5956993044924333434670365288299698895119)  \
    F(39, 0.5758081914178453007459724538157308417760)  \
    F(40, 0.5555702330196022247428308139485328743749)  \
    F(41, 0.5349976198870972106630769046370179155603)  \
    F(42, 0.5141027441932217265936938389688157726080)  \
    F(43, 0.4928981922297840368730266887588092682397)  \
    F(44, 0.4713967368259976485563876259052543776575)  \
    F(45, 0.4496113296546066000462945794242270758832)  \
    F(46, 0.4275550934302820943209668568887985343046)  \
    F(47, 0.4052413140049898709084813055050524665119)  \
    F(48, 0.3826834323650897717284599840303988667613)  \
    F(49, 0.3598950365349881487751045723267564202023)  \
    F(50, 0.3368898533922200506892532126191475704778)  \
    F(51, 0.3136817403988914766564788459941003099934)  \
    F(52, 0.2902846772544623676361923758173952746915)  \
    F(53, 0.2667127574748983863252865151164363940421)  \
    F(54, 0.2429801799032638899482741620774711183210)  \
    F(55, 0.2191012401568697972277375474973577988484)  \
    F(56, 0.1950903220161282678482848684770222409277)  \
    F(57, 0.1709618887603012263636423572082635319663)  \
    F(58, 0.1467304744553617516588501296467178197062)  \
    F(59, 0.1224106751992161984987044741509457875752)  \
    F(60, 0.09801714032956060199419556388864184586114) \
    F(61, 0.07356456359966742352946562157523432181330) \
    F(62, 0.04906767432741801425495497694268265831475) \
    F(63, 0.02454122852291228803173452945928292506547) \
    F(64, 0.0)

// tan(7 pi / 32) and tan(5 pi / 32), the half angles of the lifting steps at length 4.
#define ORVGEN_DCT4_TANGENT_7 0.8206787908286603309722819853310115987674
#define ORVGEN_DCT4_TANGENT_5 0.5345111359507916410896859612953629085820

template <class Real>
struct FixedAngles;

#define ORVGEN_DCT4_BINARY32(j, value) value##f,
#define ORVGEN_DCT4_BINARY64(j, value) value,
#define ORVGEN_DCT4_FLOAT_LITERAL_(value) value##f
#define ORVGEN_DCT4_FLOAT_LITERAL(value) ORVGEN_DCT4_FLOAT_LITERAL_(value)

template <>
struct FixedAngles<float> {
    static constexpr float cosines[65] = {ORVGEN_DCT4_COSINES(ORVGEN_DCT4_BINARY32)};
    static constexpr float tangents[2] = {ORVGEN_DCT4_FLOAT_LITERAL(ORVGEN_DCT4_TANGENT_5),
                                          ORVGEN_DCT4_FLOAT_LITERAL(ORVGEN_DCT4_TANGENT_7)};
};

template <>
struct FixedAngles<double> {
    static constexpr double cosines[65] = {ORVGEN_DCT4_COSINES(ORVGEN_DCT4_BINARY64)};
    static constexpr double tangents[2] = {ORVGEN_DCT4_TANGENT_5, ORVGEN_DCT4_TANGENT_7};
};

// An angle num pi / den. Kernels name their constants by it; the value type of a kernel says what
// it makes of the name (valueOf below for the machine's numbers).
enum class Trig { cosine, sine, tangent };
template <Trig which, int num, int den>
struct Constant {};

// The angle from 0 to pi that has the same cosine (for a sine: has it as its cosine), in 128ths of
// pi: sin(x) = cos(x - pi / 2), a full turn is 256 steps, and cos(2 pi - x) = cos(x).
template <Trig which, int num, int den>
constexpr int stepsOf(Constant<which, num, den>) {
    static_assert(which != Trig::tangent && 128 % den == 0 && num >= 0);
    constexpr int turn = (num * (128 / den) + (which == Trig::sine ? 192 : 0)) % 256;
    return turn <= 128 ? turn : 256 - turn;
}

// The cosine of an angle from 0 to pi. Equal values come from one entry of the table, and opposite
// ones differ in the sign alone.
template <class Real>
constexpr Real cosineOf(int steps) {
    return steps <= 64 ? FixedAngles<Real>::cosines[steps]
                       : -FixedAngles<Real>::cosines[128 - steps];
}

// The value of a constant in Real.
template <class Real, Trig which, int num, int den>
constexpr Real valueOf(Constant<which, num, den> constant) {
    if constexpr (which == Trig::tangent) {
        static_assert(den == 32 && (num == 5 || num == 7));
        static_cast<void>(constant);
        return FixedAngles<Real>::tangents[num == 7];
    } else {
        return cosineOf<Real>(stepsOf(constant));
    }
}

// What a value type makes of a constant: of(Constant) and zero(). Specialised for every type that a
// kernel is run on.
template <class T>
struct Values;

template <class Real>
struct ScalarValues {
    template <Trig which, int num, int den>
    static constexpr Real of(Constant<which, num, den> constant) {
        return valueOf<Real>(constant);
    }
    static constexpr Real zero() { return 0; }
};
template <>
struct Values<float> : ScalarValues<float> {};
template <>
struct Values<double> : ScalarValues<double> {};

}  // namespace orvgen::dct4
